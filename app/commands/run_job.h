// From the chosen subcommand to the exit code of the program.
#pragma once

#include <functional>

#include "app/commands/command.h"

namespace app {

/// Runs work() and returns its exit code, or prints what it throws, lets `failed` hear of it, and returns the code for
/// that.
[[nodiscard]] int exitCodeOf(const std::function<int()>& work,
                             const std::function<void(int exitCode, const FailureWords& words)>& failed = {});

/// Throws Failure when not all that was printed has arrived: results that nobody received are no results, and the disk
/// behind the standard output may be full.
void requirePrinted();

/// Runs the job, and writes its report when one is wanted. Returns the exit code, or throws what keeps the report from
/// being written.
[[nodiscard]] int runJob(const Job& job);

}  // namespace app
