// `chat-transfer decrypt-tree`: the plain form of a tree, for support cases.
#pragma once

#include "app/commands/command.h"

namespace app {

void addDecryptTreeCommand(CLI::App& program, Job& job);

}  // namespace app
