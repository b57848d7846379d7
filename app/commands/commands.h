// The commands of chat-transfer, each in a source of its own: what gives a command its options and its job.
#pragma once

#include "app/commands/command.h"

namespace app {

// From a database to packages and back.
void addSampleCommand(CLI::App& program, Job& job);
void addExportCommand(CLI::App& program, Job& job);
void addImportCommand(CLI::App& program, Job& job);

// What there is: of packages and of trees.
void addInspectCommand(CLI::App& program, Job& job);
void addVerifyCommand(CLI::App& program, Job& job);
void addViewCommand(CLI::App& program, Job& job);

// From a plain tree to a database and back.
void addSampleTreeCommand(CLI::App& program, Job& job);
void addEncryptTreeCommand(CLI::App& program, Job& job);
void addImportTreeCommand(CLI::App& program, Job& job);
void addDecryptTreeCommand(CLI::App& program, Job& job);

}  // namespace app
