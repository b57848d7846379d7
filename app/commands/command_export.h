// `chat-transfer export`: an account's history as a backup package.
#pragma once

#include "app/commands/command.h"

namespace app {

void addExportCommand(CLI::App& program, Job& job);

}  // namespace app
