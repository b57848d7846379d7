// Child processes and what they cost.
#pragma once

#include <string>
#include <vector>

namespace bench {

struct Command {
    std::vector<std::string> words;  ///< the program, searched in PATH when it has no "/", and its arguments
    std::string input;               ///< file for the standard input; none when empty
    std::string output;              ///< file for the standard output; none when empty
};

/// What one process used, from its start to its end.
struct Cost {
    double cpu = 0;     ///< seconds, user and system
    double wall = 0;    ///< seconds
    double memory = 0;  ///< peak resident bytes
};

/// From now on an interrupt (or a request to terminate) makes runProcess() end its child and throw, so that the work
/// folder is removed on the way out: it may hold gigabytes of memory.
void stopOnInterrupt();

/// Runs the command to its end. Throws when it cannot be started, does not end with 0, or is interrupted.
Cost runProcess(const Command& command);

/// The first line that the command prints; empty when it fails.
std::string firstLine(const Command& command, const std::string& scratchFile);

/// The path of a program that stands in PATH; empty when there is none.
std::string programInPath(const std::string& name);

}  // namespace bench
