#include "host/json/json_text.h"

#include <charconv>
#include <cmath>
#include <cstdint>

#include "host/base/utf8.h"
#include "host/json/byte_lanes.h"

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

void appendEscaped(TextBuffer& out, char c, char escape) {
    out += '\\';
    out += escape;
    if (escape != 'u') return;
    constexpr std::string_view kHex = "0123456789abcdef";
    const auto code = static_cast<unsigned char>(c);
    out += "00";
    out += kHex[code >> 4U];
    out += kHex[code & 0xFU];
}

// Flags those of eight bytes that do not stand for themselves, and all that are not ASCII.
std::uint64_t notPlain(std::uint64_t bytes) {
    const std::uint64_t special =
        anyZero(bytes ^ eachByte('"')) | anyZero(bytes ^ eachByte('\\')) | anyZero(bytes ^ eachByte('/'));
    const std::uint64_t controlOrHigh = ((bytes - eachByte(0x20)) | bytes) & eachByte(0x80);
    return special | controlOrHigh;
}

// Where the run of characters that need no look at them ends, from `position` on, or less than eight bytes before the
// end of the text. Most text is such runs.
std::size_t skipPlain(std::string_view text, std::size_t position) {
    for (; text.size() - position >= 8; position += 8) {
        const std::uint64_t flags = notPlain(lanesAt(text.data() + position));
        if (flags != 0) return position + firstFlagged(flags);
    }
    return position;
}

enum class Utf8 { asIs, repaired };

// What to do at one position: keep `length` bytes, or put something in their place.
struct Step {
    std::size_t length;
    char escape;     // not 0: the one byte is escaped
    bool illFormed;  // the bytes are replaced
};

template <Utf8 utf8>
Step stepAt(std::string_view text, std::size_t position, bool escapeSlashes) {
    if (utf8 == Utf8::repaired && static_cast<unsigned char>(text[position]) >= 0x80) {
        const Utf8Sequence sequence = utf8SequenceAt(text, position);
        return {sequence.length, '\0', !sequence.wellFormed};
    }
    return {1, escapeOf(text[position], escapeSlashes), false};
}

template <Utf8 utf8>
void appendQuoted(TextBuffer& out, std::string_view text, bool escapeSlashes) {
    out += '"';
    std::size_t kept = 0;  // where the run of bytes begins that are copied as they are
    for (std::size_t i = skipPlain(text, 0); i < text.size(); i = skipPlain(text, i)) {
        const Step step = stepAt<utf8>(text, i, escapeSlashes);
        if (step.escape != '\0' || step.illFormed) {
            out += text.substr(kept, i - kept);
            if (step.illFormed) {
                out += kReplacementCharacter;
            } else {
                appendEscaped(out, text[i], step.escape);
            }
            kept = i + step.length;
        }
        i += step.length;
    }
    out += text.substr(kept);
    out += '"';
}

}  // namespace

void appendJsonString(TextBuffer& out, std::string_view text, bool escapeSlashes) {
    appendQuoted<Utf8::asIs>(out, text, escapeSlashes);
}

void appendJsonText(TextBuffer& out, std::string_view text) {
    appendQuoted<Utf8::repaired>(out, text, true);
}

void appendJsonNumber(TextBuffer& out, double number) {
    constexpr std::size_t kLongest = 320;  // the largest double has 309 digits before the point
    char* const begin = out.reserve(kLongest);
    const bool integral = std::trunc(number) == number;
    const std::to_chars_result result =
        integral ? std::to_chars(begin, begin + kLongest, number, std::chars_format::fixed, 0)
                 : std::to_chars(begin, begin + kLongest, number, std::chars_format::general, 17);
    out.extendTo(result.ptr);
}

void appendJsonNumber(TextBuffer& out, long long number) {
    constexpr long long kExactInDouble = 1LL << 53;
    if (number > kExactInDouble || number < -kExactInDouble) {
        appendJsonNumber(out, static_cast<double>(number));
        return;
    }
    constexpr std::size_t kLongest = 20;
    char* const begin = out.reserve(kLongest);
    out.extendTo(std::to_chars(begin, begin + kLongest, number).ptr);
}

}  // namespace tools
