// Something that changes while an operation runs.
#pragma once

#include <functional>
#include <utility>

#include "transfer/progress_listener.h"

namespace test {

/// Runs `swap` once, when it hears of the first progress: what it changes between two steps of an operation, another
/// process could change at that moment.
class Swapper : public ProgressListener {
public:
    explicit Swapper(std::function<void()> swap) : swap_(std::move(swap)) {}
    void onProgress(long long /*context*/, int /*stage*/, int /*percent*/, const char* /*text*/) override {
        if (swap_) std::exchange(swap_, nullptr)();
    }

private:
    std::function<void()> swap_;
};

}  // namespace test
