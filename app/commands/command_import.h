// `chat-transfer import`: a backup package back into an account.
#pragma once

#include "app/commands/command.h"

namespace app {

void addImportCommand(CLI::App& program, Job& job);

}  // namespace app
