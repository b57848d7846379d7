// Text that came from databases, packages or the command line, made safe to show on a terminal.
#pragma once

#include <string>
#include <string_view>

namespace app {

/// `text` as well-formed UTF-8 without anything that a terminal obeys: control characters (escape sequences begin with
/// one) and the marks that reverse the reading direction are spelled out, as \x1b or \u202e.
[[nodiscard]] std::string printable(std::string_view text);

/// The same, but line feeds stay: for texts of several lines.
[[nodiscard]] std::string printableLines(std::string_view text);

/// At most `most` characters of printable(text), the rest as "...".
[[nodiscard]] std::string shortened(std::string_view text, std::size_t most);

}  // namespace app
