// Foreign text as a page may show it. What is escaped for HTML or for a script is a second, separate step.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace app::view {

/// The text for a block of its own: well-formed UTF-8 (ill-formed parts become U+FFFD), line ends as line feeds,
/// control characters as the symbols that picture them. Marks of the reading direction stay: a block ends their effect.
[[nodiscard]] std::string shownText(std::string_view text);

/// The text for the middle of a line, such as a name: as above, with line ends and tabs as blanks and with U+FFFD for
/// the marks that reverse the reading direction, which would reach what stands beside the name.
[[nodiscard]] std::string shownLine(std::string_view text);

/// At most `most` characters of shownLine(text), the rest as an ellipsis.
[[nodiscard]] std::string shortLine(std::string_view text, std::size_t most);

/// The text as a string literal of a script, in double quotes. It neither ends the script's element nor the literal:
/// "<", ">", "&" and the line separators of Unicode are written as escapes. `shown` is well-formed.
[[nodiscard]] std::string scriptLiteral(std::string_view shown);

}  // namespace app::view
