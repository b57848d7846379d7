#include "transfer/backup_place.h"

#include "host/confined_files.h"

namespace transfer {
namespace {

// `name` beneath `folder`, but from backupPath on if the folder lies there.
BackupPlace placeBelow(const dbTrans& transfer, const std::string& folder, const std::string& name) {
    const std::string backup = transfer.backupPath + "/";
    const bool below = !transfer.backupPath.empty() && folder.compare(0, backup.size(), backup) == 0;
    // A name that is none beneath its folder must not become one by what is put in front.
    if (!below || !tools::isConfinedName(name)) return {folder, name};
    return {backup, folder.substr(backup.size()) + "/" + name};
}

}  // namespace

BackupPlace attachmentPlace(const dbTrans& transfer, const std::string& name) {
    return placeBelow(transfer, transfer.imFileDir, name);
}

bool readBackupFile(const dbTrans& transfer, const std::string& path, std::string& bytes) {
    const std::size_t slash = path.rfind('/') + 1;
    const BackupPlace place = placeBelow(transfer, path.substr(0, slash), path.substr(slash));
    return tools::readConfined(place.folder, place.name, bytes);
}

}  // namespace transfer
