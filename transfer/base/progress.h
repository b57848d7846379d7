// Progress on its way to the host's listener.
#pragma once

class ProgressListener;

namespace chattransfer {

/// Lets a report pass when 500 milliseconds have gone by since the last one: a listener draws on a screen, and long
/// loops take thousands of steps per second.
class ProgressThrottle {
public:
    ProgressThrottle();

    /// True when a report is due, which the caller then sends; `last` makes it due in any case.
    [[nodiscard]] bool due(bool last);

private:
    unsigned long long lastReport_;
};

/// Where operations report their progress. An object belongs to one loop, whose reports it spaces out.
class Progress {
public:
    /// A null listener means that nobody listens; it is not owned. It gets `context` back.
    Progress(ProgressListener* listener, long long context) : listener_(listener), context_(context) {}

    /// Sends the percentage of `done` in `total`, and "<done>/<total>".
    void report(int stage, long long done, long long total) const;

    /// The same for a step of a loop, when a report is due.
    void reportStep(int stage, long long done, long long total, bool last);

private:
    ProgressListener* listener_;
    long long context_;
    ProgressThrottle throttle_;
};

}  // namespace chattransfer
