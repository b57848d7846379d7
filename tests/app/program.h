// Runs the real program as a child process, without a shell.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace test {

using Arguments = std::vector<std::string>;

/// `first`, and behind them `more`.
Arguments joined(Arguments first, const Arguments& more);

/// How a child process ended and what it said.
struct Outcome {
    int code = -1;        ///< exit code; -1 when a signal ended it
    bool killed = false;  ///< a signal ended it
    std::string out;
    std::string err;

    /// Both outputs, for messages of failing tests.
    std::string all() const { return "exit code " + std::to_string(code) + "\n" + out + err; }
};

/// What a child gets besides its arguments.
struct Setting {
    Arguments environment = {};         ///< "NAME=value", added to the test's own
    long long largestFile = 0;          ///< in bytes: writing beyond fails as on a full disk; 0: no limit
    std::string workingDirectory = {};  ///< empty: the test's own
};

/// Runs `chat-transfer` to its end.
Outcome chatTransfer(const Arguments& arguments, const Setting& setting = {});

/// Runs any program to its end.
Outcome runProgram(const std::string& path, const Arguments& arguments, const Setting& setting = {});

/// What is typed once a prompt has been shown.
struct Answer {
    std::string prompt;
    std::string typed;
    int pause = 200;  ///< milliseconds before it: the echo is turned off right after a prompt was written
};

/// `chat-transfer` on a terminal of its own, with the answers in the order of their prompts. The terminal's output
/// stands in `out`.
Outcome chatTransferOnTerminal(const Arguments& arguments, const std::vector<Answer>& answers = {});

/// Starts `chat-transfer` and returns at once; its outputs go nowhere.
pid_t startChatTransfer(const Arguments& arguments);

/// Waits for the end of a started child.
Outcome waitFor(pid_t child);

/// Waits until a started child has made something at `path`; false after ten seconds.
bool waitUntilThere(const std::string& path);

/// Whether a started child is over; waitFor() still has to be called.
bool isOver(pid_t child);

}  // namespace test
