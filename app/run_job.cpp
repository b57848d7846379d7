#include "app/run_job.h"

#include <exception>
#include <iostream>
#include <optional>

#include "app/interruption.h"
#include "app/report_file.h"

namespace app {
namespace {

void fail(RunReport& report, int exitCode, const FailureWords& words) {
    std::cout.flush();
    printFailure(std::cerr, words);
    report.end(exitCode, words);
}

// Results that nobody received are no results: the disk behind the standard output may be full.
void requirePrinted() {
    std::cout.flush();
    if (!std::cout.good()) throw Failure({0, "The results could not be printed", "", "", ""});
}

int run(const Job& job, RunReport& report) {
    try {
        const int code = job.run(report);
        requirePrinted();
        report.end(code);
        return code;
    } catch (const Interrupted& interruption) {
        fail(report, kInterrupted, interruption.words());
        return kInterrupted;
    } catch (const Failure& failure) {
        fail(report, kFailed, failure.words());
    } catch (const std::exception& error) {
        fail(report, kFailed, {0, error.what(), "", "", ""});
    }
    return kFailed;
}

}  // namespace

int runJob(const Job& job) try {
    std::optional<ReportFile> file;
    if (!job.reportFile.empty()) file.emplace(job.reportFile);
    RunReport report(job.command);
    const int code = run(job, report);
    if (file) file->write(report.json());
    return code;
} catch (const Failure& failure) {
    printFailure(std::cerr, failure.words());
    return kFailed;
}

}  // namespace app
