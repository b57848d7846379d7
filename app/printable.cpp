#include "app/printable.h"

#include "host/fixed_text.h"
#include "host/utf8.h"

namespace app {
namespace {

struct Character {
    char32_t code;
    std::size_t length;
};

std::size_t lengthOfSequence(unsigned char first) {
    if (first < 0x80) return 1;
    if (first < 0xE0) return 2;
    return first < 0xF0 ? 3 : 4;
}

// `text` is well-formed and not empty.
Character firstCharacter(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = lengthOfSequence(first);
    char32_t code = length == 1 ? first : first & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i)
        code = (code << 6) | (static_cast<unsigned char>(text[i]) & 0x3FU);
    return {code, length};
}

bool isHarmless(char32_t code) {
    if (code < 0x20 || (code >= 0x7F && code < 0xA0)) return false;
    // Line and paragraph separators; embeddings, overrides and isolates of the reading direction.
    return !(code >= 0x2028 && code <= 0x202E) && !(code >= 0x2066 && code <= 0x2069);
}

std::string spelledOut(char32_t code) {
    const auto number = static_cast<unsigned>(code);
    if (number < 0x80) return tools::FixedText<16>("\\x%02x", number).text();
    return tools::FixedText<16>("\\u%04x", number).text();
}

template <class IsKept>
std::string filtered(std::string_view text, IsKept isKept) {
    const std::string wellFormed = tools::toWellFormedUtf8(text);
    std::string result;
    for (std::string_view rest = wellFormed; !rest.empty();) {
        const Character character = firstCharacter(rest);
        if (isKept(character.code)) {
            result += rest.substr(0, character.length);
        } else {
            result += spelledOut(character.code);
        }
        rest.remove_prefix(character.length);
    }
    return result;
}

}  // namespace

std::string printable(std::string_view text) {
    return filtered(text, isHarmless);
}

std::string printableLines(std::string_view text) {
    return filtered(text, [](char32_t code) { return code == U'\n' || isHarmless(code); });
}

std::string shortened(std::string_view text, std::size_t most) {
    std::string safe = printable(text);
    std::string_view rest = safe;
    for (std::size_t count = 0; !rest.empty(); ++count) {
        if (count == most) return safe.substr(0, safe.size() - rest.size()) + "...";
        rest.remove_prefix(firstCharacter(rest).length);
    }
    return safe;
}

}  // namespace app
