// The attachments that messages and notes of a tree name, and where an import puts them.
#pragma once

#include <functional>
#include <string>

#include "app/attachments/attachment_files.h"
#include "transfer/records.h"

namespace app {

/// Calls visit(file) for each file that the body of a message of this type names.
void forEachTreeFile(const std::string& body, int type, const std::function<void(AttachmentFile)>& visit);

/// The same for a note.
void forEachTreeFile(const st_noteTrans& note, const std::function<void(AttachmentFile)>& visit);

}  // namespace app
