// `chat-transfer verify`: holds a package against an account.
#pragma once

#include "app/commands/command.h"

namespace app {

void addVerifyCommand(CLI::App& program, Job& job);

}  // namespace app
