// `chat-transfer inspect`: what a package holds.
#pragma once

#include "app/commands/command.h"

namespace app {

void addInspectCommand(CLI::App& program, Job& job);

}  // namespace app
