// The account of attachments in the report.
#pragma once

#include <string>

#include "host/confined_files.h"
#include "transfer/transfer_report.h"

namespace transfer {

/// Counts what became of the attachment `name`, and lists it with the reason when it was left out.
void countAttachment(TransferReport& report, const std::string& name, tools::FileOutcome outcome);

}  // namespace transfer
