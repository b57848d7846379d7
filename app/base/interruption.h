// Ctrl-C: a command that is asked to end does so at its next safe moment, and says what is done. Asked twice, it ends
// at once.
#pragma once

#include <exception>
#include <functional>
#include <string>

#include "app/base/failure.h"

namespace app {

/// While it lives, SIGINT and SIGTERM only leave a mark, and a line that says so. The second signal of a kind ends the
/// program as if nobody had caught it. One that is made while another lives changes nothing.
class InterruptsMark {
public:
    InterruptsMark();
    ~InterruptsMark();
    InterruptsMark(const InterruptsMark&) = delete;
    InterruptsMark& operator=(const InterruptsMark&) = delete;
    InterruptsMark(InterruptsMark&&) = delete;
    InterruptsMark& operator=(InterruptsMark&&) = delete;
};

/// Leaves the work that is being done, from any depth. Not for users: interruptible() turns it into words.
class LeaveWork : public std::exception {};

/// Throws LeaveWork when the mark is set.
void leaveIfInterrupted();

/// What an interrupted command ends with.
class Interrupted : public Failure {
public:
    using Failure::Failure;
};

/// Runs work() unless the mark is set already. When work is left, words() says what has been done and what is to do.
void interruptible(const std::function<void()>& work, const std::function<FailureWords()>& words);

/// The words of work that leaves nothing behind when it is left.
[[nodiscard]] FailureWords wordsForNothingDone();

}  // namespace app
