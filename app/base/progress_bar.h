// Shows the progress of an operation on the standard error: one line that moves on a terminal, a plain line now and
// then elsewhere.
#pragma once

#include <limits>
#include <map>
#include <string>

#include "app/base/phase_times.h"
#include "app/base/stopwatch.h"
#include "transfer/progress_listener.h"

namespace app {

/// The percentage is that of the whole command. It and the remaining time never go back, and 100 % is shown only when
/// the command has succeeded.
class ProgressBar : public ProgressListener {
public:
    /// What the stages of an operation are called.
    using StageNames = std::map<int, std::string>;
    /// How much of the whole command a phase takes, in percent, by the name that it is shown with. The time that phases
    /// really take depends on the data: these are means.
    using Shares = std::map<std::string, int>;

    /// `times` hears of each phase. Without shares a command has one phase.
    explicit ProgressBar(PhaseTimes& times, Shares shares = {});
    ~ProgressBar() override;
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ProgressBar(ProgressBar&&) = delete;
    ProgressBar& operator=(ProgressBar&&) = delete;

    /// Announces the next operation. `waiting` is shown until its first report: not every step can count.
    void begin(const std::string& waiting, StageNames names);

    /// Leaves the operation when the program has been interrupted.
    void onProgress(long long context, int stage, int percent, const char* text) override;

    /// Shows 100 %, if anything was shown before: the command has succeeded.
    void complete();

    /// Ends the line that is being drawn. Call it before anything else is printed.
    void finish();

private:
    void enter(const std::string& phase);
    void advance(int percent);
    [[nodiscard]] std::string remaining() const;
    void draw(const std::string& text);
    void print(const std::string& text);

    PhaseTimes& times_;
    bool onTerminal_;
    bool lineOpen_ = false;
    bool printed_ = false;  // a plain line
    Shares shares_;
    StageNames names_;
    int stage_ = -1;
    std::string phase_;
    int done_ = 0;     // the shares of the phases that are over
    int percent_ = 0;  // of the whole
    Stopwatch sinceBegin_;
    double secondsLeft_ = std::numeric_limits<double>::infinity();
    double lastLine_ = 0;
};

}  // namespace app
