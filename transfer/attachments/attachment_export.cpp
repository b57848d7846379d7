#include "transfer/attachments/attachment_export.h"

#include "host/tools.h"
#include "transfer/format/attachment_body.h"

namespace chattransfer {

tools::FileOutcome exportAttachment(tools::ConfinedFolder& account, tools::ConfinedFolder& package,
                                    const std::string& path) {
    std::string name;
    tools::getNameFromPath(path, name);
    if (!tools::isConfinedName(path) || !tools::isConfinedName(name)) return tools::FileOutcome::refused;
    const tools::FileKind kind = account.kindOf(name);
    if (kind == tools::FileKind::unknown) return tools::FileOutcome::failed;
    if (kind != tools::FileKind::regular) return tools::FileOutcome::missing;
    // For a path without "/" this makes a folder of the attachment's own name, onto which the copy then fails.
    package.createFolder(folderOf(path));
    return account.copyTo(package, name, path, tools::Flush::later);
}

}  // namespace chattransfer
