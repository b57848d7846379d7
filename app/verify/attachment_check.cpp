#include "app/verify/attachment_check.h"

namespace app {
namespace {

// Copies that differ are a finding, unless `excused`: then the rule of shared names explains them. So is a copy that
// cannot be read.
void checkCopies(const AttachmentFiles& files, const AttachmentFile& file, bool excused, VerifyReport& report) {
    const Bytes bytes = files.compareCopies(file);
    if (bytes == Bytes::equal) return;
    if (bytes == Bytes::unreadable) {
        report.add(Finding::fileUnreadable, "attachment " + file.source + ", on one side or on both");
    } else if (excused) {
        report.add(Rule::attachmentNameShared);
    } else {
        report.add(Finding::attachmentDiffers, file.source);
    }
}

void checkOnlyInAccount(const AttachmentFile& file, Direction direction, VerifyReport& report) {
    if (file.source.find('/') == std::string::npos) {
        report.add(Rule::attachmentWithoutFolder);
    } else if (direction != Direction::imported) {
        report.add(Finding::attachmentNotInPackage, file.source);
    }
}

}  // namespace

AttachmentCounts checkPackageAttachments(const AttachmentFiles& files, Direction direction, VerifyReport& report) {
    return files.forEach([&](const AttachmentFile& file, AttachmentPlace place) {
        const bool shared = files.sharesSource(file) || files.sharesAccountName(file);
        if (place == AttachmentPlace::refused) report.add(Rule::attachmentNameRefused);
        if (place == AttachmentPlace::both) checkCopies(files, file, shared, report);
        if (place == AttachmentPlace::account) checkOnlyInAccount(file, direction, report);
        if (place == AttachmentPlace::source && direction != Direction::exported)
            report.add(Finding::attachmentNotInAccount, file.source);
    });
}

AttachmentCounts checkTreeAttachments(const AttachmentFiles& files, VerifyReport& report) {
    return files.forEach([&](const AttachmentFile& file, AttachmentPlace place) {
        if (place == AttachmentPlace::refused) report.add(Rule::attachmentNameRefused);
        // Of several files with one name the first takes it, and the others stay in the tree.
        if (place == AttachmentPlace::both) checkCopies(files, file, files.sharesAccountName(file), report);
        if (place == AttachmentPlace::source)
            report.add(Finding::attachmentNotInAccount, file.source + ", which the tree still has");
        if (place == AttachmentPlace::neither) report.add(Finding::attachmentNotInAccount, file.source);
    });
}

}  // namespace app
