// Notifications to the host's listener, and how often they are sent.
#pragma once

class ProgressListener;
class dbTrans;

namespace chattransfer {

/// Sends (context, stage, percent, "<done>/<total>") to the listener of `transfer`; nothing when nobody listens.
void notify(const dbTrans& transfer, int stage, int percent, int done, int total);

/// notify() with the percentage of `done` in `total`.
void notifyShare(const dbTrans& transfer, int stage, long long done, long long total);

/// Lets a report pass when 500 milliseconds have gone by since the last one: a listener draws on a screen, and long
/// loops take thousands of steps per second.
class ProgressThrottle {
public:
    ProgressThrottle();

    /// True when a report is due, which the caller then sends; `last` makes it due in any case.
    bool due(bool last);

private:
    unsigned long long lastReport_;
};

}  // namespace chattransfer
