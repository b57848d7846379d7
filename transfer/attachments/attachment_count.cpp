#include "transfer/attachments/attachment_count.h"

namespace chattransfer {

void countAttachment(TransferReport& report, const std::string& name, tools::FileOutcome outcome) {
    switch (outcome) {
        case tools::FileOutcome::done:
            ++report.attachmentsDone;
            return;
        case tools::FileOutcome::missing:
            ++report.attachmentsMissing;
            report.skip(name, Omission::attachmentMissing);
            return;
        case tools::FileOutcome::refused:
            ++report.attachmentsRefused;
            report.skip(name, Omission::attachmentRefused);
            return;
        case tools::FileOutcome::failed:
            ++report.attachmentsFailed;
            report.skip(name, Omission::attachmentNotWritten);
            return;
    }
}

}  // namespace chattransfer
