#include "app/attachments/tree_file_names.h"

namespace app {

void forEachTreeFile(const std::string& body, int type, const chattransfer::TreeFileKeys& keys,
                     const std::function<void(AttachmentFile)>& visit) {
    using chattransfer::TreeFileKind;
    chattransfer::forEachTreeFile(body, type, keys, [&visit](const chattransfer::TreeFile& file) {
        const bool preview = file.kind == TreeFileKind::thumbnail || file.kind == TreeFileKind::preview;
        visit({file.value, chattransfer::accountFolderOf(file.kind), file.name, file.name,
               preview ? AttachmentRole::preview : AttachmentRole::content});
    });
}

}  // namespace app
