#include "transfer/attachments/backup_place.h"

namespace chattransfer {
namespace {

// `folder` with `place` for what stands at backupPath.
tools::ConfinedFolder folderInBackup(const dbTrans& transfer, const std::string& folder, const std::string& place) {
    const std::string backup = transfer.backupPath + "/";
    const bool below = !transfer.backupPath.empty() && folder.compare(0, backup.size(), backup) == 0;
    return below ? tools::ConfinedFolder(place + "/", folder.substr(backup.size())) : tools::ConfinedFolder(folder);
}

}  // namespace

tools::ConfinedFolder attachmentFolder(const dbTrans& transfer) {
    const std::string& source = transfer.rehearsalSource;
    tools::ConfinedFolder folder =
        folderInBackup(transfer, transfer.imFileDir, source.empty() ? transfer.backupPath : source);
    folder.rehearse(transfer.rehearsal);
    return folder;
}

bool readBackupFile(const dbTrans& transfer, const std::string& path, std::string& bytes) {
    const std::size_t slash = path.rfind('/') + 1;
    return folderInBackup(transfer, path.substr(0, slash), transfer.backupPath).read(path.substr(slash), bytes);
}

}  // namespace chattransfer
