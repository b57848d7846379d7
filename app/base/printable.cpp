#include "app/base/printable.h"

#include "app/base/characters.h"
#include "host/base/fixed_text.h"
#include "host/base/utf8.h"

namespace app {
namespace {

bool isHarmless(char32_t code) {
    return !isControl(code) && !isSecondControl(code) && !isLineSeparator(code) && !changesDirection(code);
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
        const Character character = nextCharacter(rest);
        if (isKept(character.code)) {
            result += character.bytes;
        } else {
            result += spelledOut(character.code);
        }
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
    return cutShort(printable(text), most, "...");
}

}  // namespace app
