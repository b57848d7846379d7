#include "transfer/base/progress_report.h"

#include "host/base/fixed_text.h"
#include "host/base/numeric.h"
#include "host/tools.h"
#include "transfer/dbTrans.h"

namespace chattransfer {

void notify(const dbTrans& transfer, int stage, int percent, int done, int total) {
    if (transfer.progressListener == nullptr) return;
    const tools::FixedText<128> text("%d/%d", done, total);
    transfer.progressListener->onProgress(transfer.progressContext, stage, percent, text.text());
}

void notifyShare(const dbTrans& transfer, int stage, long long done, long long total) {
    const int percent = tools::percentOf(static_cast<double>(done), static_cast<double>(total));
    notify(transfer, stage, percent, static_cast<int>(done), static_cast<int>(total));
}

ProgressThrottle::ProgressThrottle() : lastReport_(tools::get_Startmsec()) {}

bool ProgressThrottle::due(bool last) {
    constexpr unsigned long long kIntervalMs = 500;
    const unsigned long long now = tools::get_Startmsec();
    if (!last && now - lastReport_ < kIntervalMs) return false;
    lastReport_ = now;
    return true;
}

}  // namespace chattransfer
