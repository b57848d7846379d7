// Files of a package or tree, reached without a link anywhere below the folder that the user chose.
//
// What stands in that folder may be written by others while a transfer runs, on a memory card for example. A folder
// that was looked at and then replaced by a link must not give a private file away, nor have one overwritten.
#pragma once

#include <string>

#include "host/files/confined_files.h"
#include "transfer/dbTrans.h"

namespace chattransfer {

/// The attachments of the package or tree at work: a folder beneath backupPath when they are there, which may itself
/// be, and may lie behind, a link of the user.
tools::ConfinedFolder attachmentFolder(const dbTrans& transfer);

/// Reads all of the package's file `path`. False when it is missing, no regular file or behind a link, or cannot be
/// read.
bool readBackupFile(const dbTrans& transfer, const std::string& path, std::string& bytes);

}  // namespace chattransfer
