// What export and the two imports say alike about what they moved.
#pragma once

#include <string>

#include "app/report/summary.h"
#include "transfer/dbTrans.h"

namespace app {

void addMessageRows(Summary& summary, const TransferReport& report);

void addContactRows(Summary& summary, const dbTrans& transfer);

/// The rows of attachments; an export has them too. `done` is what became of those that were copied or moved.
void addAttachmentRows(Summary& summary, const TransferReport& report, const std::string& done);

}  // namespace app
