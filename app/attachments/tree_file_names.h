// The attachments that messages and notes of a tree name, and where an import puts them.
#pragma once

#include <functional>
#include <string>

#include "app/attachments/attachment_files.h"
#include "transfer/format/tree_body.h"

namespace app {

/// Calls visit(file) for each file that a body of the type names.
void forEachTreeFile(const std::string& body, int type, const chattransfer::TreeFileKeys& keys,
                     const std::function<void(AttachmentFile)>& visit);

}  // namespace app
