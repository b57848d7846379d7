#include "host/json_text.h"

#include <array>
#include <charconv>
#include <cmath>

namespace tools {
namespace {

// The letter behind the backslash; 'u' for the four-digit form; 0 for characters that stand for themselves.
char escapeOf(char c, bool escapeSlashes) {
    switch (c) {
        case '"':
        case '\\':
            return c;
        case '/':
            return escapeSlashes ? c : '\0';
        case '\b':
            return 'b';
        case '\f':
            return 'f';
        case '\n':
            return 'n';
        case '\r':
            return 'r';
        case '\t':
            return 't';
        default:
            return static_cast<unsigned char>(c) < 0x20 ? 'u' : '\0';
    }
}

void appendEscaped(std::string& out, char c, char escape) {
    out += '\\';
    out += escape;
    if (escape != 'u') return;
    constexpr std::string_view kHex = "0123456789abcdef";
    const auto code = static_cast<unsigned char>(c);
    out += "00";
    out += kHex[code >> 4U];
    out += kHex[code & 0xFU];
}

}  // namespace

void appendJsonString(std::string& out, std::string_view text, bool escapeSlashes) {
    out += '"';
    std::size_t plain = 0;  // where the run of characters that need no escape begins
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char escape = escapeOf(text[i], escapeSlashes);
        if (escape == '\0') continue;
        out.append(text, plain, i - plain);
        appendEscaped(out, text[i], escape);
        plain = i + 1;
    }
    out.append(text, plain, text.size() - plain);
    out += '"';
}

void appendJsonNumber(std::string& out, double number) {
    // The largest double has 309 digits before the point.
    std::array<char, 320> digits;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by to_chars
    const bool integral = std::trunc(number) == number;
    const std::to_chars_result result =
        integral ? std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed, 0)
                 : std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::general, 17);
    out.append(digits.data(), result.ptr);
}

}  // namespace tools
