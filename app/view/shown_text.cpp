#include "app/view/shown_text.h"

#include "app/base/characters.h"
#include "host/base/fixed_text.h"
#include "host/base/utf8.h"

namespace app::view {
namespace {

// Unicode pictures each ASCII control: U+2400 to U+241F, and U+2421 for DEL.
std::string pictureOf(char32_t control) {
    constexpr char32_t kDelete = 0x7F;
    const char32_t last = control == kDelete ? 0xA1 : 0x80 + control;
    return std::string("\xE2\x90") + static_cast<char>(last);
}

void appendForBlock(std::string& shown, const Character& character) {
    if (isSecondControl(character.code)) {
        shown += tools::kReplacementCharacter;
    } else if (isControl(character.code) && character.code != U'\n' && character.code != U'\t') {
        shown += pictureOf(character.code);
    } else {
        shown += character.bytes;
    }
}

void appendForLine(std::string& line, const Character& character) {
    if (character.code == U'\n' || character.code == U'\t' || isLineSeparator(character.code)) {
        line += ' ';
    } else if (changesDirection(character.code)) {
        line += tools::kReplacementCharacter;
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
        const Character character = nextCharacter(rest);
        const bool ofLineEnd = character.code == U'\r' && !rest.empty() && rest.front() == '\n';
        if (!ofLineEnd) append(result, character);
    }
    return result;
}

bool endsScriptOrLiteral(char32_t code) {
    return isControl(code) || isLineSeparator(code) || code == U'"' || code == U'\\' || code == U'<' || code == U'>' ||
           code == U'&' || code == U'\'';
}

}  // namespace

std::string shownText(std::string_view text) {
    return converted(text, appendForBlock);
}

std::string shownLine(std::string_view text) {
    return converted(text, appendForLine);
}

std::string shortLine(std::string_view text, std::size_t most) {
    return cutShort(shownLine(text), most, "\u2026");
}

std::string scriptLiteral(std::string_view shown) {
    std::string literal = "\"";
    for (std::string_view rest = shown; !rest.empty();) {
        const Character character = nextCharacter(rest);
        if (endsScriptOrLiteral(character.code)) {
            literal += tools::FixedText<8>(R"(\u%04x)", static_cast<unsigned>(character.code)).text();
        } else {
            literal += character.bytes;
        }
    }
    return literal + "\"";
}

}  // namespace app::view
