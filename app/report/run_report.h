// What one run of a command has to tell: to the person at the terminal, and to the file of --report. The document's
// format is described in docs/run-report.md and by docs/schemas/run-report.schema.json.
#pragma once

#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "app/base/failure.h"
#include "app/base/given_folder.h"
#include "app/base/phase_times.h"
#include "app/base/stopwatch.h"
#include "app/report/summary.h"
#include "transfer/transfer_report.h"

namespace app {

/// Filled by the command as it goes; whatever ends the run, the report has what was known by then.
class RunReport {
public:
    /// Something that a comparison found, or explained by a rule.
    struct Finding {
        std::string kind;   ///< for programs, such as "messageDiffers"
        std::string words;  ///< for people
        long long count = 0;
        std::vector<std::string> first;  ///< some of them, one by one
    };

    explicit RunReport(std::string command) : command_(std::move(command)) {}

    Summary summary;
    PhaseTimes phases;
    bool dryRun = false;
    GivenFolder given;  ///< the folder at work
    std::vector<Finding> findings;
    std::vector<Finding> changedByRule;

    /// Seconds since the beginning of the run.
    [[nodiscard]] double seconds() const { return watch_.seconds(); }

    /// Prints the table that ends a command's output, below a line that says what was done.
    void printSummary(const std::string& heading) const;

    /// Prints the warning, and keeps it for the report.
    void warn(const std::string& text);

    /// Warns of each number of things that is not 0. True when there was one.
    [[nodiscard]] bool warnOf(const std::vector<std::pair<long long, const char*>>& things);

    /// Prints what was left out, and keeps it for the report: paths as `given` names them.
    void leaveOut(const TransferReport& report);

    /// How the run ended. A code other than 0 without a failure: done, but not all of it.
    void end(int exitCode);
    void end(int exitCode, FailureWords failure);

    /// The document.
    [[nodiscard]] std::string json() const;

private:
    [[nodiscard]] const char* outcome() const;

    std::string command_;
    std::time_t begun_ = std::time(nullptr);
    Stopwatch watch_;
    std::vector<std::string> warnings_;
    TransferReport leftOut_;
    int exitCode_ = 0;
    bool failed_ = false;
    FailureWords failure_;
};

/// True for the text of such a document.
[[nodiscard]] bool isRunReport(const std::string& text);

/// Runs work(), and then fill(), which puts what was done into the report: also when work() is left by an exception.
template <class Work, class Fill>
void summarised(const Work& work, const Fill& fill) {
    try {
        work();
    } catch (...) {
        fill();
        throw;
    }
    fill();
}

}  // namespace app
