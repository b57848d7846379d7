// `chat-transfer sample-tree`: a plain tree that looks alive.
#pragma once

#include "app/commands/command.h"

namespace app {

void addSampleTreeCommand(CLI::App& program, Job& job);

}  // namespace app
