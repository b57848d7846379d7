// The command line of chat-transfer as a whole: what main() runs, and what the manual page and the shells' completions
// are made from.
#pragma once

#include "app/commands/command.h"

namespace app {

inline constexpr const char* kProgramDescription =
    "chat-transfer moves a chat account's history between its databases and backup packages, and out of the encrypted "
    "trees of other clients.";

/// Gives `program` its help texts and all subcommands. While a command line is parsed, the chosen one sets `job`.
void addCommands(CLI::App& program, Job& job);

}  // namespace app
