#include "transfer/base/progress.h"

#include "host/base/fixed_text.h"
#include "host/base/numeric.h"
#include "host/tools.h"
#include "transfer/progress_listener.h"

namespace chattransfer {

ProgressThrottle::ProgressThrottle() : lastReport_(tools::get_Startmsec()) {}

bool ProgressThrottle::due(bool last) {
    constexpr unsigned long long kIntervalMs = 500;
    const unsigned long long now = tools::get_Startmsec();
    if (!last && now - lastReport_ < kIntervalMs) return false;
    lastReport_ = now;
    return true;
}

void Progress::report(int stage, long long done, long long total) const {
    if (listener_ == nullptr) return;
    const int percent = tools::percentOf(static_cast<double>(done), static_cast<double>(total));
    // Room for two numbers of any size.
    const tools::FixedText<128> text("%d/%d", static_cast<int>(done), static_cast<int>(total));
    listener_->onProgress(context_, stage, percent, text.text());
}

void Progress::reportStep(int stage, long long done, long long total, bool last) {
    if (throttle_.due(last)) report(stage, done, total);
}

}  // namespace chattransfer
