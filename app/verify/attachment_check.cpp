#include "app/verify/attachment_check.h"

#include "app/attachments/package_file_names.h"

namespace app {

void AttachmentCheck::collect(const std::string& body, int msgType) {
    forEachPackageFile(body, msgType, [this](AttachmentFile file) { files_.add(std::move(file)); });
}

AttachmentCounts AttachmentCheck::compare(Direction direction, VerifyReport& report) const {
    return files_.forEach(
        [&](const AttachmentFile& file, AttachmentPlace place) { compareOne(file, place, direction, report); });
}

void AttachmentCheck::compareOne(const AttachmentFile& file, AttachmentPlace place, Direction direction,
                                 VerifyReport& report) const {
    if (place == AttachmentPlace::refused) report.add(Rule::attachmentNameRefused);
    if (place == AttachmentPlace::both) {
        files_.compareBytes(file, files_.sharesSource(file) || files_.sharesAccountName(file), report);
    }
    if (place == AttachmentPlace::source && direction != Direction::exported) {
        report.add(Finding::attachmentNotInAccount, file.source);
    }
    if (place != AttachmentPlace::account) return;
    if (file.source.find('/') == std::string::npos) {
        report.add(Rule::attachmentWithoutFolder);
    } else if (direction != Direction::imported) {
        report.add(Finding::attachmentNotInPackage, file.source);
    }
}

}  // namespace app
