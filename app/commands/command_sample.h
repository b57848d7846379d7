// `chat-transfer sample`: an account that looks alive, to try things with.
#pragma once

#include "app/commands/command.h"

namespace app {

void addSampleCommand(CLI::App& program, Job& job);

}  // namespace app
