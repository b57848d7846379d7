// Files of a package or tree, reached without a link anywhere below the folder that the user chose.
//
// What stands in that folder may be written by others while a transfer runs, on a memory card for example. A folder
// that was looked at and then replaced by a link must not give a private file away, nor have one overwritten.
#pragma once

#include <string>

#include "transfer/dbTrans.h"

namespace transfer {

/// A name beneath a folder, as host/confined_files.h takes them.
struct BackupPlace {
    std::string folder;  ///< may be, and may lie behind, a link of the user
    std::string name;
};

/// The attachment `name` of the package or tree at work: beneath backupPath when its attachments are there, else
/// beneath their own folder.
BackupPlace attachmentPlace(const dbTrans& transfer, const std::string& name);

/// Reads all of the package's file `path`. False when it is missing, no regular file or behind a link, or cannot be
/// read.
bool readBackupFile(const dbTrans& transfer, const std::string& path, std::string& bytes);

}  // namespace transfer
