// Shows the progress of an operation on the standard error: one line that moves on a terminal, a plain line now and
// then elsewhere.
#pragma once

#include <map>
#include <string>

#include "app/units.h"
#include "transfer/progress_listener.h"

namespace app {

class ProgressBar : public ProgressListener {
public:
    /// What the stages of an operation are called.
    using StageNames = std::map<int, std::string>;

    ProgressBar();
    ~ProgressBar() override;
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ProgressBar(ProgressBar&&) = delete;
    ProgressBar& operator=(ProgressBar&&) = delete;

    /// Announces the next operation. `waiting` is shown until its first report: not every step can count.
    void begin(const std::string& waiting, StageNames names);

    void onProgress(long long context, int stage, int percent, const char* text) override;

    /// Ends the line that is being drawn. Call it before anything else is printed.
    void finish();

private:
    void enter(int stage);
    void draw(int percent, const std::string& text);
    void print(int percent, const std::string& text);

    bool onTerminal_;
    bool lineOpen_ = false;
    StageNames names_;
    int stage_ = -1;
    std::string name_;
    Stopwatch sinceStage_;
    double lastLine_ = 0;
};

}  // namespace app
