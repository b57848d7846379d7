#include "transfer/attachments/backup_place.h"

namespace chattransfer {
namespace {

// `folder`, with `instead` for what stands at `backup`.
tools::ConfinedFolder folderInBackup(const std::string& backup, const std::string& folder, const std::string& instead) {
    const std::string root = backup + "/";
    const bool below = !backup.empty() && folder.compare(0, root.size(), root) == 0;
    return below ? tools::ConfinedFolder(instead + "/", folder.substr(root.size())) : tools::ConfinedFolder(folder);
}

}  // namespace

tools::ConfinedFolder attachmentFolder(const AttachmentSource& source) {
    const std::string& instead = source.instead.empty() ? source.backup : source.instead;
    tools::ConfinedFolder folder = folderInBackup(source.backup, source.attachments, instead);
    folder.rehearse(source.dryRun);
    return folder;
}

bool readBackupFile(const std::string& backup, const std::string& path, std::string& bytes) {
    const std::size_t slash = path.rfind('/') + 1;
    return folderInBackup(backup, path.substr(0, slash), backup).read(path.substr(slash), bytes);
}

}  // namespace chattransfer
