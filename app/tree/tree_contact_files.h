// Which of several files of recent contacts counts: an import lets each one replace the contacts of the one before.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "app/tree/tree_contents.h"

namespace app {

/// The file that an import would take now, the last one in the order in which the system lists the tree. Null when
/// there is none.
[[nodiscard]] const TreeContactFile* lastListedFile(const TreeSource& source,
                                                    const std::vector<TreeContactFile>& files);

/// Says, where there are several files, that only one counts, and lists them with `mark` at the chosen one.
void printContactFiles(std::ostream& out, const std::vector<TreeContactFile>& files, const TreeContactFile* chosen,
                       const char* mark);

}  // namespace app
