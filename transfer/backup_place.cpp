#include "transfer/backup_place.h"

namespace transfer {
namespace {

tools::ConfinedFolder folderInBackup(const dbTrans& transfer, const std::string& folder) {
    const std::string backup = transfer.backupPath + "/";
    const bool below = !transfer.backupPath.empty() && folder.compare(0, backup.size(), backup) == 0;
    return below ? tools::ConfinedFolder(backup, folder.substr(backup.size())) : tools::ConfinedFolder(folder);
}

}  // namespace

tools::ConfinedFolder attachmentFolder(const dbTrans& transfer) {
    return folderInBackup(transfer, transfer.imFileDir);
}

bool readBackupFile(const dbTrans& transfer, const std::string& path, std::string& bytes) {
    const std::size_t slash = path.rfind('/') + 1;
    return folderInBackup(transfer, path.substr(0, slash)).read(path.substr(slash), bytes);
}

}  // namespace transfer
