#include "app/commands/run_job.h"

#include <exception>
#include <iostream>
#include <optional>

#include "app/base/interruption.h"
#include "app/report/report_file.h"

namespace app {

int exitCodeOf(const std::function<int()>& work, const std::function<void(int, const FailureWords&)>& failed) {
    const auto fail = [&failed](int exitCode, const FailureWords& words) {
        std::cout.flush();
        printFailure(std::cerr, words);
        if (failed) failed(exitCode, words);
        return exitCode;
    };
    try {
        return work();
    } catch (const Interrupted& interruption) {
        return fail(kInterrupted, interruption.words());
    } catch (const Failure& failure) {
        return fail(kFailed, failure.words());
    } catch (const std::exception& error) {
        return fail(kFailed, {0, error.what(), "", "", ""});
    }
}

void requirePrinted() {
    std::cout.flush();
    if (!std::cout.good()) throw Failure({0, "The results could not be printed", "", "", ""});
}

int runJob(const Job& job) {
    std::optional<ReportFile> file;
    if (!job.reportFile.empty()) file.emplace(job.reportFile);
    RunReport report(job.command);
    const auto work = [&] {
        const int code = job.run(report);
        requirePrinted();
        report.end(code);
        return code;
    };
    const int code = exitCodeOf(work, [&](int exitCode, const FailureWords& words) { report.end(exitCode, words); });
    if (file) file->write(report.json());
    return code;
}

}  // namespace app
