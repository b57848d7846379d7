// `chat-transfer encrypt-tree`: encrypts the record files of a plain tree, so that it can be imported.
#pragma once

#include "app/commands/command.h"

namespace app {

void addEncryptTreeCommand(CLI::App& program, Job& job);

}  // namespace app
