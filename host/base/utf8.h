// UTF-8 well-formedness, as Unicode defines it (Unicode 15, table 3-7: no overlong forms, no surrogates, nothing above
// U+10FFFF).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tools {

/// What stands at one position of a text.
struct Utf8Sequence {
    std::size_t length;  ///< of the sequence, or of the maximal ill-formed part: at least 1
    bool wellFormed;
};

/// The sequence that begins at `position`, which must lie within the text.
[[nodiscard]] Utf8Sequence utf8SequenceAt(std::string_view text, std::size_t position);

constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";  ///< U+FFFD

/// `text` with each maximal ill-formed part replaced by one such character, the practice that Unicode recommends and
/// that text decoders of the web follow. One broken byte then costs one character, not the whole message.
[[nodiscard]] std::string toWellFormedUtf8(std::string_view text);

}  // namespace tools
