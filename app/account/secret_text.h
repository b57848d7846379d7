// A key in memory, overwritten when it is no longer needed.
#pragma once

#include <string>
#include <utility>

#include "host/base/wipe.h"

namespace app {

using tools::wipe;

/// Owns a key text. Movable, not copyable, wiped at its end.
class SecretText {
public:
    SecretText() = default;
    explicit SecretText(std::string&& text) { take(text); }
    ~SecretText() { wipe(text_); }
    SecretText(const SecretText&) = delete;
    SecretText& operator=(const SecretText&) = delete;
    SecretText(SecretText&& other) noexcept { take(other.text_); }
    SecretText& operator=(SecretText&& other) noexcept {
        std::swap(text_, other.text_);
        return *this;
    }

    [[nodiscard]] bool empty() const { return text_.empty(); }
    [[nodiscard]] const std::string& text() const { return text_; }

private:
    // A short text lies inside the string object: after the exchange its bytes are still in the other one.
    void take(std::string& text) noexcept {
        text_.swap(text);
        wipe(text);
    }

    std::string text_;
};

}  // namespace app
