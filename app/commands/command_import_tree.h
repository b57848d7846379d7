// `chat-transfer import-tree`: an encrypted per-conversation tree into an account.
#pragma once

#include "app/commands/command.h"

namespace app {

void addImportTreeCommand(CLI::App& program, Job& job);

}  // namespace app
