#include "app/base/interruption.h"

#include <unistd.h>

#include <csignal>
#include <cstring>

namespace app {
namespace {

volatile std::sig_atomic_t marked = 0;
int marksAlive = 0;

// Only what a signal handler may do.
void mark(int /*signal*/) {
    constexpr const char* kLine = "\nEnding at the next safe moment. Ctrl-C again ends at once.\n";
    marked = 1;
    static_cast<void>(!write(STDERR_FILENO, kLine, std::strlen(kLine)));
}

void onInterrupts(void (*handler)(int), int flags) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    for (const int signal : {SIGINT, SIGTERM})
        sigaction(signal, &action, nullptr);
}

}  // namespace

InterruptsMark::InterruptsMark() {
    if (marksAlive++ > 0) return;
    marked = 0;
    // The mark must not make a read or write that it falls into fail.
    onInterrupts(mark, static_cast<int>(SA_RESTART | SA_RESETHAND));
}

InterruptsMark::~InterruptsMark() {
    if (--marksAlive == 0) onInterrupts(SIG_DFL, 0);
}

void leaveIfInterrupted() {
    if (marked != 0) throw LeaveWork();
}

void interruptible(const std::function<void()>& work, const std::function<FailureWords()>& words) {
    try {
        leaveIfInterrupted();
        work();
    } catch (const LeaveWork&) {
        throw Interrupted(words());
    }
}

FailureWords wordsForNothingDone() {
    return {0, "Interrupted; nothing was made or changed", "", "", ""};
}

}  // namespace app
