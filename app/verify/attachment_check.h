// Holds the attachments that records name against each other, on the two sides that have them.
#pragma once

#include "app/attachments/attachment_files.h"
#include "app/verify/compare_records.h"
#include "app/verify/verify_report.h"

namespace app {

/// The attachments of a package and of an account.
[[nodiscard]] AttachmentCounts checkPackageAttachments(const AttachmentFiles& files, Direction direction,
                                                       VerifyReport& report);

/// Those of a tree. An import moves attachments: the account must have them. Where the tree has a copy too (it is not
/// the one that was imported, or the account had a file of that name before), both must have the same bytes.
[[nodiscard]] AttachmentCounts checkTreeAttachments(const AttachmentFiles& files, VerifyReport& report);

}  // namespace app
