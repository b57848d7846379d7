// `chat-transfer inspect` for a tree.
#pragma once

#include <string>

#include "app/report/run_report.h"
#include "app/tree/tree_contents.h"

namespace app {

/// Prints what the tree holds, as tables or as JSON. The key is empty when there is none.
void inspectTree(const TreeSource& source, const std::string& key, bool json, RunReport& run);

}  // namespace app
