// Texts formatted into zero-filled buffers of a fixed size.
//
// The size bounds what a stranger's table name or path can make of a statement. What does not fit fails as a whole: a
// name that is cut short is the valid name of something else.
#pragma once

#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstdio>

namespace tools {

/// A zero-filled buffer of `Size` bytes, NUL included, filled at most once by printf formatting.
template <std::size_t Size>
class FixedText {
public:
    /// Formats as printf does. When the text does not fit, the buffer is empty and fits() is false.
    /// The compiler checks the arguments against the format, which it cannot do for a parameter pack.
    // NOLINTNEXTLINE(cert-dcl50-cpp)
    [[gnu::format(printf, 2, 3)]] explicit FixedText(const char* format, ...) {
        va_list arguments;
        va_start(arguments, format);
        const int length = std::vsnprintf(buffer_.data(), Size, format, arguments);
        va_end(arguments);
        fits_ = length >= 0 && static_cast<std::size_t>(length) < Size;
        if (!fits_) buffer_.fill('\0');
    }

    [[nodiscard]] bool fits() const { return fits_; }

    /// The text, NUL-terminated; empty when it did not fit.
    [[nodiscard]] const char* text() const { return buffer_.data(); }

private:
    std::array<char, Size> buffer_{};
    bool fits_ = false;
};

}  // namespace tools
