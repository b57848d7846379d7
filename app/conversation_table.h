// Parts of what `inspect` prints that packages and trees share.
#pragma once

#include <iosfwd>
#include <map>
#include <string>

#include "app/package_summary.h"

namespace app {

/// The versions that files say, with the number of files when there are several.
std::string versionsText(const std::map<std::string, int>& versions);

/// One line for each conversation.
void printConversations(const PackageSummary& summary, std::ostream& out);

}  // namespace app
