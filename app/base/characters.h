// The characters of a text, and those among them that do more than stand in it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace app {

struct Character {
    std::string_view bytes;
    char32_t code;
};

/// Takes the first character off the front of `text`, which is well-formed UTF-8 and not empty.
[[nodiscard]] Character nextCharacter(std::string_view& text);

/// The well-formed `text`, or where it has more than `most` characters these and then `ending`.
[[nodiscard]] std::string cutShort(std::string text, std::size_t most, std::string_view ending);

/// The controls of ASCII, line feed, tab and delete among them.
[[nodiscard]] constexpr bool isControl(char32_t code) {
    return code < 0x20 || code == 0x7F;
}

/// The second set of controls, which terminals obey as they do the first.
[[nodiscard]] constexpr bool isSecondControl(char32_t code) {
    return code >= 0x80 && code <= 0x9F;
}

/// The separators of lines and of paragraphs.
[[nodiscard]] constexpr bool isLineSeparator(char32_t code) {
    return code == 0x2028 || code == 0x2029;
}

/// Embeddings, overrides and isolates of the reading direction: they reach what stands beside them.
[[nodiscard]] constexpr bool changesDirection(char32_t code) {
    return (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

}  // namespace app
