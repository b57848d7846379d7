#include "app/view/shown_text.h"

#include "host/fixed_text.h"
#include "host/utf8.h"

namespace app::view {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

// Takes the first character off the front of `text`, which is well-formed and not empty.
std::string_view nextCharacter(std::string_view& text) {
    const std::string_view character = text.substr(0, tools::utf8SequenceAt(text, 0).length);
    text.remove_prefix(character.size());
    return character;
}

// Well-formed UTF-8 sorts as its characters do.
bool isBetween(std::string_view character, std::string_view first, std::string_view last) {
    return character.size() == first.size() && character >= first && character <= last;
}

bool isLineSeparator(std::string_view character) {
    return isBetween(character, "\u2028", "\u2029");
}

bool isSecondControl(std::string_view character) {
    return isBetween(character, "\xC2\x80", "\xC2\x9F");  // U+0080 to U+009F
}

// Embeddings and overrides, isolates, and the marks of one direction.
bool changesDirection(std::string_view character) {
    // NOLINTNEXTLINE(misc-misleading-bidirectional): these are the characters to find
    return isBetween(character, "\xE2\x80\xAA", "\xE2\x80\xAE") || isBetween(character, "\xE2\x81\xA6", "\xE2\x81\xA9");
}

bool isControl(std::string_view character) {
    const auto byte = static_cast<unsigned char>(character.front());
    return byte < 0x20 || byte == 0x7F;
}

// Unicode pictures each ASCII control: U+2400 to U+241F, and U+2421 for DEL.
std::string pictureOf(char control) {
    constexpr unsigned kDelete = 0x7F;
    const auto code = static_cast<unsigned char>(control);
    const unsigned last = code == kDelete ? 0xA1 : 0x80 + code;
    return std::string("\xE2\x90") + static_cast<char>(last);
}

void appendForBlock(std::string& shown, std::string_view character) {
    if (isSecondControl(character)) {
        shown += kReplacement;
    } else if (isControl(character) && character != "\n" && character != "\t") {
        shown += pictureOf(character.front());
    } else {
        shown += character;
    }
}

void appendForLine(std::string& line, std::string_view character) {
    if (character == "\n" || character == "\t" || isLineSeparator(character)) {
        line += ' ';
    } else if (changesDirection(character)) {
        line += kReplacement;
    } else {
        appendForBlock(line, character);
    }
}

// Calls append(result, character) for each character; a carriage return before a line feed is part of the line end.
template <class Append>
std::string converted(std::string_view text, Append append) {
    const std::string wellFormed = tools::toWellFormedUtf8(text);
    std::string result;
    result.reserve(wellFormed.size());
    for (std::string_view rest = wellFormed; !rest.empty();) {
        const std::string_view character = nextCharacter(rest);
        const bool ofLineEnd = character == "\r" && !rest.empty() && rest.front() == '\n';
        if (!ofLineEnd) append(result, character);
    }
    return result;
}

bool endsScriptOrLiteral(std::string_view character) {
    const char first = character.front();
    return isControl(character) || first == '"' || first == '\\' || first == '<' || first == '>' || first == '&' ||
           first == '\'';
}

}  // namespace

std::string shownText(std::string_view text) {
    return converted(text, appendForBlock);
}

std::string shownLine(std::string_view text) {
    return converted(text, appendForLine);
}

std::string shortLine(std::string_view text, std::size_t most) {
    std::string line = shownLine(text);
    std::string_view rest = line;
    for (std::size_t count = 0; !rest.empty(); ++count) {
        if (count == most) return line.substr(0, line.size() - rest.size()) + "\u2026";
        nextCharacter(rest);
    }
    return line;
}

std::string scriptLiteral(std::string_view shown) {
    std::string literal = "\"";
    for (std::string_view rest = shown; !rest.empty();) {
        const std::string_view character = nextCharacter(rest);
        if (isLineSeparator(character)) {
            literal += character == "\u2028" ? R"(\u2028)" : R"(\u2029)";
        } else if (endsScriptOrLiteral(character)) {
            literal += tools::FixedText<8>(R"(\u%04x)", static_cast<unsigned>(character.front())).text();
        } else {
            literal += character;
        }
    }
    return literal + "\"";
}

}  // namespace app::view
