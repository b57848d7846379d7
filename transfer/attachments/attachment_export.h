// Copying attachments out of an account into a package.
#pragma once

#include <string>

#include "host/files/confined_files.h"

namespace chattransfer {

/// Copies the attachment to `path`, which is relative to the package; the file itself lies flat in the account's folder
/// for its kind. What is copied is not flushed.
[[nodiscard]] tools::FileOutcome exportAttachment(tools::ConfinedFolder& account, tools::ConfinedFolder& package,
                                                  const std::string& path);

}  // namespace chattransfer
