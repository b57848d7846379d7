#include "host/base/utf8.h"

namespace tools {
namespace {

// What the second byte of a sequence may be depends on its first: these bounds keep out overlong forms (E0, F0),
// surrogates (ED) and values above U+10FFFF (F4).
struct SequenceRule {
    std::size_t length;  // 0: the byte cannot begin a sequence
    unsigned char secondLow;
    unsigned char secondHigh;
};

SequenceRule ruleOf(unsigned char first) {
    if (first < 0x80) return {1, 0, 0};
    if (first < 0xC2) return {0, 0, 0};
    if (first < 0xE0) return {2, 0x80, 0xBF};
    if (first == 0xE0) return {3, 0xA0, 0xBF};
    if (first == 0xED) return {3, 0x80, 0x9F};
    if (first < 0xF0) return {3, 0x80, 0xBF};
    if (first == 0xF0) return {4, 0x90, 0xBF};
    if (first < 0xF4) return {4, 0x80, 0xBF};
    if (first == 0xF4) return {4, 0x80, 0x8F};
    return {0, 0, 0};
}

}  // namespace

Utf8Sequence utf8SequenceAt(std::string_view text, std::size_t position) {
    const auto byteAt = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const SequenceRule rule = ruleOf(byteAt(position));
    if (rule.length == 0) return {1, false};
    for (std::size_t offset = 1; offset < rule.length; ++offset) {
        const unsigned char low = offset == 1 ? rule.secondLow : 0x80;
        const unsigned char high = offset == 1 ? rule.secondHigh : 0xBF;
        if (position + offset >= text.size()) return {offset, false};
        const unsigned char byte = byteAt(position + offset);
        if (byte < low || byte > high) return {offset, false};
    }
    return {rule.length, true};
}

std::string toWellFormedUtf8(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const Utf8Sequence sequence = utf8SequenceAt(text, position);
        result += sequence.wellFormed ? text.substr(position, sequence.length) : kReplacementCharacter;
        position += sequence.length;
    }
    return result;
}

}  // namespace tools
