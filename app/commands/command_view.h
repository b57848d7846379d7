// `chat-transfer view`: makes pages to read out of a package or a tree.
#pragma once

#include "app/commands/command.h"

namespace app {

void addViewCommand(CLI::App& program, Job& job);

}  // namespace app
