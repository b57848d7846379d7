#include "transfer/attachments/attachment_count.h"

namespace chattransfer {

void countAttachment(TransferReport& report, const std::string& name, tools::FileOutcome outcome) {
    switch (outcome) {
        case tools::FileOutcome::done:
            ++report.attachmentsDone;
            return;
        case tools::FileOutcome::missing:
            ++report.attachmentsMissing;
            report.skip(name, "the attachment is missing");
            return;
        case tools::FileOutcome::refused:
            ++report.attachmentsRefused;
            report.skip(name, "the attachment's name leads outside its folder, or is no regular file");
            return;
        case tools::FileOutcome::failed:
            ++report.attachmentsFailed;
            report.skip(name, "the attachment could not be written");
            return;
    }
}

}  // namespace chattransfer
