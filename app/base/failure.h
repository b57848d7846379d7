// A command that cannot do its work ends with a Failure: what failed, on which path, why, and what to do about it.
#pragma once

#include <iosfwd>
#include <stdexcept>
#include <string>

namespace app {

/// A result code as users see it, for example "0xff00001f".
[[nodiscard]] std::string hexCode(unsigned int code);

/// The words of one failure. Paths and reasons may come from foreign data: they are made printable when shown.
struct FailureWords {
    unsigned int code = 0;  ///< result code of the transfer; 0 when it has none for this
    std::string what;       ///< what failed, as a sentence without its full stop
    std::string path = {};
    std::string reason = {};
    std::string remedy = {};  ///< what to do
};

class Failure : public std::runtime_error {
public:
    explicit Failure(FailureWords words) : std::runtime_error(words.what), words_(std::move(words)) {}

    [[nodiscard]] const FailureWords& words() const { return words_; }

private:
    FailureWords words_;
};

void printFailure(std::ostream& out, const FailureWords& words);

/// One line "chat-transfer: warning: ..." on the standard error.
void warn(const std::string& text);

/// The system's words for an errno value.
[[nodiscard]] std::string systemWords(int error);

/// What to do where something cannot be written.
inline constexpr const char* kCheckThePlace = "check that the place can be written to and is not full";

/// Throws Failure for what cannot be made or written at `path`. The reason is in errno.
[[noreturn]] void failToWrite(const std::string& path, const std::string& what);

}  // namespace app
