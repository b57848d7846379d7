#include "app/base/characters.h"

#include "host/base/utf8.h"

namespace app {
namespace {

// The first byte has a bit for each byte of its sequence, a zero, and the highest bits of the code; each further byte
// has six more.
char32_t codeOf(std::string_view bytes) {
    const auto first = static_cast<unsigned char>(bytes.front());
    char32_t code = bytes.size() == 1 ? first : first & (0xFFU >> (bytes.size() + 1));
    for (const char byte : bytes.substr(1))
        code = (code << 6) | (static_cast<unsigned char>(byte) & 0x3FU);
    return code;
}

}  // namespace

Character nextCharacter(std::string_view& text) {
    const std::string_view bytes = text.substr(0, tools::utf8SequenceAt(text, 0).length);
    text.remove_prefix(bytes.size());
    return {bytes, codeOf(bytes)};
}

std::string cutShort(std::string text, std::size_t most, std::string_view ending) {
    std::string_view rest = text;
    for (std::size_t count = 0; count < most && !rest.empty(); ++count)
        static_cast<void>(nextCharacter(rest));  // passed over
    if (rest.empty()) return text;
    return text.replace(text.size() - rest.size(), rest.size(), ending);
}

}  // namespace app
