#include "app/account/key_prompt.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>

#include "app/base/failure.h"
#include "host/files/file_handle.h"

namespace app {
namespace {

using tools::detail::FileHandle;

constexpr std::size_t kLongestKey = 4096;

FileHandle openTerminal() {
    return FileHandle(open("/dev/tty", O_RDWR | O_CLOEXEC));
}

[[noreturn]] void cancelled() {
    throw Failure({0, "No key was given", "", "the prompt was cancelled", ""});
}

// While it lives, the terminal shows nothing of what is typed, and Ctrl-C arrives as a character: a signal would end
// the program with the echo still off.
class SilentTerminal {
public:
    explicit SilentTerminal(int descriptor) : descriptor_(descriptor) {
        valid_ = tcgetattr(descriptor_, &before_) == 0;
        termios silent = before_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ICANON | ISIG);
        silent.c_cc[VMIN] = 1;
        silent.c_cc[VTIME] = 0;
        if (valid_) tcsetattr(descriptor_, TCSAFLUSH, &silent);
    }
    ~SilentTerminal() {
        if (valid_) tcsetattr(descriptor_, TCSAFLUSH, &before_);
    }
    SilentTerminal(const SilentTerminal&) = delete;
    SilentTerminal& operator=(const SilentTerminal&) = delete;
    SilentTerminal(SilentTerminal&&) = delete;
    SilentTerminal& operator=(SilentTerminal&&) = delete;

private:
    int descriptor_;
    termios before_{};
    bool valid_ = false;
};

void eraseLastCharacter(std::string& text) {
    constexpr unsigned kContinuationMask = 0xC0;
    constexpr unsigned kContinuation = 0x80;
    while (!text.empty() && (static_cast<unsigned char>(text.back()) & kContinuationMask) == kContinuation)
        text.pop_back();
    if (!text.empty()) text.pop_back();
}

SecretText readSilently(int terminal) {
    const SilentTerminal silence(terminal);
    std::string text;
    text.reserve(kLongestKey);  // it never moves, so that no copy is left behind
    for (;;) {
        char typed = '\0';
        const bool ended = read(terminal, &typed, 1) != 1;
        if (ended || typed == 3 || typed == 4) {
            wipe(text);
            cancelled();
        }
        if (typed == '\n' || typed == '\r') return SecretText(std::move(text));
        if (typed == '\b' || typed == 127) {
            eraseLastCharacter(text);
        } else if (typed != '\0' && text.size() < kLongestKey) {
            text += typed;
        }
    }
}

SecretText ask(int terminal, const std::string& question) {
    // A terminal that shows no text may still take a key.
    static_cast<void>(tools::detail::writeAll(terminal, question.data(), question.size()));
    SecretText key = readSilently(terminal);
    static_cast<void>(tools::detail::writeAll(terminal, "\n", 1));
    return key;
}

}  // namespace

bool canAskForKey() {
    return openTerminal().valid() && isatty(STDIN_FILENO) == 1;
}

SecretText askForKey(KeyPurpose purpose) {
    const FileHandle terminal = openTerminal();
    if (!terminal.valid()) {
        throw Failure({0, "The key cannot be asked for", "", "there is no terminal",
                       "give the key with --key-file FILE or in CHAT_TRANSFER_KEY"});
    }
    SecretText key = ask(terminal.get(), "Key of the account: ");
    if (key.empty()) cancelled();
    if (purpose == KeyPurpose::unlock) return key;
    const SecretText again = ask(terminal.get(), "The same key again: ");
    if (key.text() == again.text()) return key;
    throw Failure({0, "No key was given", "", "the two texts differ", "run the command again"});
}

}  // namespace app
