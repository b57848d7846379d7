// What an operation left out, in words.
#pragma once

#include <iosfwd>
#include <string>

#include "app/base/given_folder.h"
#include "transfer/transfer_report.h"

namespace app {

/// How many left-out things are named one by one before "... and N more".
inline constexpr long long kNamedAtMost = 20;

/// Lists them with their reasons; nothing when nothing was left out.
void printLeftOut(const TransferReport& report, std::ostream& out);

/// The report with its paths in the words of the person who named the folder.
[[nodiscard]] TransferReport asGiven(TransferReport report, const GivenFolder& folder);

/// The first left-out thing other than an attachment, with its reason; empty when there is none.
[[nodiscard]] std::string firstReasonBesideAttachments(const TransferReport& report);

}  // namespace app
