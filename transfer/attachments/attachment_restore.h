// Copying the attachments of a package back into an account.
#pragma once

#include <string>

#include "transfer/attachments/attachment_folders.h"
#include "transfer/transfer_report.h"

namespace chattransfer {

/// Copies the files that a body names from the package into the account, where none of them stands; voice files in any
/// case. 1 when the body is a JSON object of a type that carries files, else 0. The report counts the files.
[[nodiscard]] int restoreAttachments(TransferReport& report, AttachmentFolders& folders, const std::string& body,
                                     int msgType);

}  // namespace chattransfer
