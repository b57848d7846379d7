// The attachments that messages of a package name, and what an account calls them.
#pragma once

#include <functional>
#include <string>

#include "app/attachments/attachment_files.h"

namespace app {

/// Calls visit(file) for each file that a body of the type names.
void forEachPackageFile(const std::string& body, int msgType, const std::function<void(AttachmentFile)>& visit);

}  // namespace app
