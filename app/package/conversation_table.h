// Parts of what `inspect` prints that packages and trees share.
#pragma once

#include <iosfwd>
#include <map>
#include <string>

#include "app/package/package_summary.h"
#include "app/report/summary.h"

namespace app {

/// The versions that files say, with the number of files when there are several.
std::string versionsText(const std::map<std::string, int>& versions);

// Rows of the table of totals.
void addMessageTotals(Summary& table, const std::map<std::string, int>& versions, const PackageSummary& messages);
void addAttachmentTotals(Summary& table, const AttachmentCounts& counts);

/// One line for each conversation.
void printConversations(const PackageSummary& summary, std::ostream& out);

}  // namespace app
