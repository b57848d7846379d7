#include "app/attachments/tree_file_names.h"

#include "transfer/format/tree_body.h"

namespace app {
namespace {

using Visit = std::function<void(AttachmentFile)>;

void visitFiles(const std::string& body, int type, const chattransfer::TreeFileKeys& keys, const Visit& visit) {
    using chattransfer::TreeFileKind;
    // A body that is no JSON names no file.
    static_cast<void>(chattransfer::forEachTreeFile(body, type, keys, [&visit](const chattransfer::TreeFile& file) {
        const bool preview = file.kind == TreeFileKind::thumbnail || file.kind == TreeFileKind::preview;
        visit({file.value, chattransfer::accountFolderOf(file.kind), file.name, file.name,
               preview ? AttachmentRole::preview : AttachmentRole::content});
    }));
}

}  // namespace

void forEachTreeFile(const std::string& body, int type, const Visit& visit) {
    visitFiles(body, type, chattransfer::kMessageFileKeys, visit);
}

void forEachTreeFile(const st_noteTrans& note, const Visit& visit) {
    visitFiles(note.content, note.type, chattransfer::kNoteFileKeys, visit);
}

}  // namespace app
