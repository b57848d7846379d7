// UTF-8 well-formedness, as Unicode defines it (Unicode 15, table 3-7: no overlong forms, no surrogates, nothing above
// U+10FFFF).
#pragma once

#include <string>
#include <string_view>

namespace tools {

/// True when every byte of `text` belongs to a well-formed sequence.
bool isWellFormedUtf8(std::string_view text);

/// `text` with each maximal ill-formed part replaced by one U+FFFD, the practice that Unicode recommends and that text
/// decoders of the web follow. One broken byte then costs one character, not the whole message.
std::string toWellFormedUtf8(std::string_view text);

}  // namespace tools
