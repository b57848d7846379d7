// A listener that remembers what it heard.
#pragma once

#include <string>
#include <vector>

#include "transfer/progress_listener.h"

namespace test {

class RecordingListener : public ProgressListener {
public:
    void onProgress(long long context, int stage, int percent, const char* text) override {
        heard.push_back(std::to_string(stage) + " " + std::to_string(percent) + " " + text);
        contexts.push_back(context);
    }

    std::vector<std::string> heard;  ///< "<stage> <percent> <text>"
    std::vector<long long> contexts;
};

/// What a StoppingListener throws.
struct StoppedByHost {};

/// A host whose user has pressed "cancel": throws at the first report.
class StoppingListener : public ProgressListener {
public:
    void onProgress(long long /*context*/, int /*stage*/, int /*percent*/, const char* /*text*/) override {
        throw StoppedByHost();
    }
};

}  // namespace test
