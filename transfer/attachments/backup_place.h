// Files of a package or tree, reached without a link anywhere below the folder that the user chose.
//
// What stands in that folder may be written by others while a transfer runs, on a memory card for example. A folder
// that was looked at and then replaced by a link must not give a private file away, nor have one overwritten.
#pragma once

#include <string>

#include "host/files/confined_files.h"

namespace chattransfer {

/// Where the attachments of the package or tree at work are.
struct AttachmentSource {
    std::string backup;        ///< the folder that the user chose, without a "/" at its end
    std::string attachments;   ///< the attachment folder, ending in "/"; mostly below `backup`
    std::string instead;       ///< where what stands below `backup` is to be looked for; empty: there
    tools::Rehearsal* dryRun;  ///< notes what would be copied or moved; null: it is done. Not owned
};

/// The attachments: a folder beneath `backup` when they are there, which may itself be, and may lie behind, a link of
/// the user.
[[nodiscard]] tools::ConfinedFolder attachmentFolder(const AttachmentSource& source);

/// Reads all of the file `path` of the package in the folder `backup`. False when it is missing, no regular file or
/// behind a link, or cannot be read.
[[nodiscard]] bool readBackupFile(const std::string& backup, const std::string& path, std::string& bytes);

}  // namespace chattransfer
