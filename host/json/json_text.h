// The spelling of JSON: how this component writes strings and numbers, in one place for the tree writer and for writers
// that do without a tree. RFC 8259, with "/" escaped as "\/" (the library's default, which keeps the text embeddable in
// HTML).
#pragma once

#include <string_view>

#include "host/base/text_buffer.h"

namespace tools {

/// Appends `text` in quotes. The text is taken as it is: who needs UTF-8 makes it well-formed first.
void appendJsonString(TextBuffer& out, std::string_view text, bool escapeSlashes = true);

/// appendJsonString() of toWellFormedUtf8(text), in one pass over the text.
void appendJsonText(TextBuffer& out, std::string_view text);

/// Appends a number: integral values without exponent and fraction, whatever their size; others with 17 significant
/// digits, as "%1.17g" does in the C locale. NaN and infinities are no JSON numbers and must not be passed.
void appendJsonNumber(TextBuffer& out, double number);

/// Appends `number` as appendJsonNumber() writes the nearest double.
void appendJsonNumber(TextBuffer& out, long long number);

}  // namespace tools
