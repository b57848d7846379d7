#include "app/verify/tree_attachment_check.h"

#include "app/attachments/tree_file_names.h"

namespace app {

void TreeAttachmentCheck::collect(const imsdk::st_dbMessageBean& message) {
    forEachTreeFile(message.body, message.msgType, chattransfer::kMessageFileKeys,
                    [this](AttachmentFile file) { files_.add(std::move(file)); });
}

void TreeAttachmentCheck::collect(const std::vector<st_noteTrans>& notes) {
    for (const st_noteTrans& note : notes) {
        forEachTreeFile(note.content, note.type, chattransfer::kNoteFileKeys,
                        [this](AttachmentFile file) { files_.add(std::move(file)); });
    }
}

AttachmentCounts TreeAttachmentCheck::compare(VerifyReport& report) const {
    return files_.forEach([&](const AttachmentFile& file, AttachmentPlace place) {
        if (place == AttachmentPlace::refused) report.add(Rule::attachmentNameRefused);
        // Of several files with one name the first takes it, and the others stay in the tree.
        if (place == AttachmentPlace::both) files_.compareBytes(file, files_.sharesAccountName(file), report);
        if (place == AttachmentPlace::source) {
            report.add(Finding::attachmentNotInAccount, file.source + ", which the tree still has");
        }
        if (place == AttachmentPlace::neither) report.add(Finding::attachmentNotInAccount, file.source);
    });
}

}  // namespace app
