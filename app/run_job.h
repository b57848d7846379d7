// From the chosen subcommand to the exit code of the program.
#pragma once

#include "app/command.h"

namespace app {

/// Runs the job, prints what makes it fail, and writes its report when one is wanted. Returns the exit code.
int runJob(const Job& job);

}  // namespace app
