// The account of attachments in the report.
#pragma once

#include <string>

#include "host/files/confined_files.h"
#include "transfer/transfer_report.h"

namespace chattransfer {

/// Counts what became of the attachment `name`, and lists it with the reason when it was left out.
void countAttachment(TransferReport& report, const std::string& name, tools::FileOutcome outcome);

/// Counts the attachment `name` as present when something stands at its place in the account; takes it over, with
/// take(), only where certainly nothing stands: a file of the user's is never overwritten.
template <class Take>
void takeUnlessPresent(TransferReport& report, const std::string& name, tools::FileKind atTarget, Take take) {
    if (atTarget != tools::FileKind::none && atTarget != tools::FileKind::unknown) {
        ++report.attachmentsPresent;
    } else {
        countAttachment(report, name, atTarget == tools::FileKind::none ? take() : tools::FileOutcome::failed);
    }
}

}  // namespace chattransfer
