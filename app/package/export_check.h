// Whether an export wrote all that it should: the library passes over files that it cannot write and goes on.
#pragma once

#include <string>

#include "transfer/dbTrans.h"

namespace app {

enum class Layout { days, packed };

/// Throws Failure when a conversation could not be read whole. To be called when the report holds the selection only.
/// Tables that are no conversation's own are passed over.
void requireWholeSelection(const TransferReport& report, const std::string& database);

/// Messages without a year: a selection by day never matches them.
[[nodiscard]] long long countUndated(dbTrans& transfer);

/// How many of the selected messages the layout puts into files: all of them for `days`; for `packed` what follows the
/// last full file inside the last day is left out.
[[nodiscard]] long long expectedMessages(const dbTrans& transfer, Layout layout);

/// True when all expected messages and, for `days`, all recent contacts stand in the package.
[[nodiscard]] bool holdsAll(const dbTrans& transfer, Layout layout);

/// Attachments that could not be copied, without images that have no folder in their name: those have no place in a
/// package.
[[nodiscard]] long long unexpectedlyFailedAttachments(const dbTrans& transfer);

}  // namespace app
