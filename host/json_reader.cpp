#include "host/json_reader.h"

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "host/byte_lanes.h"
#include "host/json_literal.h"
#include "host/numeric.h"

namespace tools {
namespace {

constexpr int kDeepest = 2048;  // the library's limit
constexpr std::size_t kFewNames = 32;

bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// True when none of the eight bytes ends a string, begins an escape or is a control character.
bool allOrdinary(const char* eight) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, eight, sizeof(bytes));
    return (anyControl(bytes) | anyZero(bytes ^ eachByte('"')) | anyZero(bytes ^ eachByte('\\'))) == 0;
}

// The spellings of numbers that strtod takes and the library then refuses. A "-" before something else is none of them:
// the library reads nothing there, takes it for a 0, and stumbles over the "-" next unless it stands at the root.
bool isRefusedSpelling(const char* text, const char* end) {
    const std::string_view literal(text, static_cast<std::size_t>(end - text));
    if (literal.size() > 1 && literal[0] == '0' && literal[1] != '.') return true;
    if (literal.size() > 2 && literal.substr(0, 2) == "-0" && literal[2] != '.') return true;
    return literal.find_first_of("xX") != std::string_view::npos;
}

// An object or array that a walk over a value is in.
struct OpenContainer {
    bool isObject;
    JsonNames names;  // those of the object so far
};

void appendUtf8(char*& out, unsigned code) {
    const auto put = [&out](unsigned byte) { *out++ = static_cast<char>(byte); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0U | code >> 6U);
        put(0x80U | (code & 0x3FU));
    } else if (code < 0x10000) {
        put(0xE0U | code >> 12U);
        put(0x80U | (code >> 6U & 0x3FU));
        put(0x80U | (code & 0x3FU));
    } else {
        put(0xF0U | code >> 18U);
        put(0x80U | (code >> 12U & 0x3FU));
        put(0x80U | (code >> 6U & 0x3FU));
        put(0x80U | (code & 0x3FU));
    }
}

}  // namespace

bool JsonNames::add(std::string_view name) {
    if (few_.size() < kFewNames) {
        for (const std::string_view other : few_) {
            if (other == name) return false;
        }
        few_.push_back(name);
        return true;
    }
    if (many_.empty()) many_.insert(few_.begin(), few_.end());
    return many_.insert(name).second;
}

JsonReader::JsonReader(std::string& text) : at_(text.data()), end_(text.data() + text.size()) {
    if (std::strncmp(at_, "\xEF\xBB\xBF", 3) == 0) at_ += 3;
}

void JsonReader::skipBlanks() {
    while (isBlank(*at_))
        ++at_;
}

char JsonReader::next() {
    if (!ok_) return '\0';
    skipBlanks();
    return *at_;
}

bool JsonReader::atNumber() {
    const char c = next();
    return c == '-' || isDigit(c);
}

void JsonReader::enter() {
    if (!ok_) return;
    ++at_;
    ++depth_;
    first_ = true;
}

// True when another member or element follows; false at the closing bracket, which is passed, and for errors.
bool JsonReader::nextItem(char closing) {
    const char c = next();
    if (!ok_) return false;
    if (c == closing) {
        ++at_;
        --depth_;
        first_ = false;
        return false;
    }
    if (!first_ && c == ',') {
        ++at_;
        skipBlanks();
    } else if (!first_) {
        reject();
    }
    first_ = false;
    // A comma in front of the bracket, and a value below the deepest level.
    if (*at_ == closing || depth_ > kDeepest) reject();
    return ok_;
}

bool JsonReader::nextElement() {
    return nextItem(']');
}

bool JsonReader::nextMember(std::string_view& name) {
    if (!nextItem('}')) return false;
    name = readString();
    if (next() != ':' || name.find('\0') != std::string_view::npos) {
        reject();
        return false;
    }
    ++at_;
    return true;
}

std::string_view JsonReader::readString() {
    if (!atString()) {
        reject();
        return {};
    }
    char* begin = ++at_;
    while (end_ - at_ >= 8 && allOrdinary(at_))
        at_ += 8;
    while (static_cast<unsigned char>(*at_) >= 0x20 && *at_ != '"' && *at_ != '\\')
        ++at_;
    std::string_view text(begin, static_cast<std::size_t>(at_ - begin));
    if (*at_ == '"') {
        ++at_;
        return text;
    }
    if (*at_ != '\\' || !decodeString(begin, text)) reject();
    return ok_ ? text : std::string_view();
}

// Goes on from the first escape of a string, moving its decoded text together.
bool JsonReader::decodeString(char* begin, std::string_view& text) {
    char* out = at_;
    while (*at_ != '"') {
        if (static_cast<unsigned char>(*at_) < 0x20) return false;
        if (*at_ != '\\') {
            *out++ = *at_++;
        } else if (!decodeEscape(out)) {
            return false;
        }
    }
    ++at_;
    text = std::string_view(begin, static_cast<std::size_t>(out - begin));
    return true;
}

bool JsonReader::decodeEscape(char*& out) {
    constexpr std::string_view kLetters = "\"\\/bfnrt";
    constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
    const char letter = at_[1];
    if (letter == 'u') return decodeUnicode(out);
    const std::size_t index = letter == '\0' ? std::string_view::npos : kLetters.find(letter);
    if (index == std::string_view::npos) return false;
    *out++ = kMeanings[index];
    at_ += 2;
    return true;
}

// "\uXXXX", or a pair of them for a character beyond the 16-bit ones (RFC 8259, section 7).
bool JsonReader::decodeUnicode(char*& out) {
    unsigned code = 0;
    if (!readHex4(code)) return false;
    if (code >= 0xD800 && code <= 0xDFFF) {
        unsigned trail = 0;
        const bool leads = code <= 0xDBFF && at_[0] == '\\' && at_[1] == 'u';
        if (!leads || !readHex4(trail) || trail < 0xDC00 || trail > 0xDFFF) return false;
        code = 0x10000 + ((code - 0xD800) << 10U) + (trail - 0xDC00);
    }
    appendUtf8(out, code);
    return true;
}

// Reads the four digits behind "\u" and passes all six characters.
bool JsonReader::readHex4(unsigned& code) {
    code = 0;
    for (int i = 2; i < 6; ++i) {
        const char c = at_[i];
        unsigned digit = 0;
        if (isDigit(c)) {
            digit = static_cast<unsigned>(c - '0');
        } else if (c >= 'a' && c <= 'f') {
            digit = static_cast<unsigned>(c - 'a') + 10;
        } else if (c >= 'A' && c <= 'F') {
            digit = static_cast<unsigned>(c - 'A') + 10;
        } else {
            return false;
        }
        code = code * 16 + digit;
    }
    at_ += 6;
    return true;
}

JsonNumber JsonReader::readNumber() {
    if (!atNumber()) {
        reject();
        return {};
    }
    errno = 0;
    const detail::JsonLiteral literal = detail::readJsonLiteral(at_);
    const bool refused =
        !literal.plainInteger && (errno != 0 || isRefusedSpelling(at_, literal.end) || !std::isfinite(literal.value));
    if (refused) {
        reject();
        return {};
    }
    at_ += literal.end - at_;
    return {literal.value, literal.hasExact ? literal.exact : truncateTo<long long>(literal.value)};
}

// One list of open objects and arrays instead of recursion: a text of a stranger must not choose how much stack is
// used.
void JsonReader::skip() {
    std::vector<OpenContainer> open;
    std::string_view name;
    do {
        if (!open.empty()) {
            OpenContainer& innermost = open.back();
            if (!(innermost.isObject ? nextMember(name) : nextElement())) {
                open.pop_back();
                continue;
            }
            if (innermost.isObject && !innermost.names.add(name)) reject();
        }
        if (atObject() || atArray()) {
            open.push_back({atObject(), {}});
            enter();
        } else {
            skipScalar();
        }
    } while (!open.empty());
}

void JsonReader::skipScalar() {
    if (atString()) {
        readString();
    } else if (!readWord("true") && !readWord("false") && !readWord("null")) {
        readNumber();
    }
}

bool JsonReader::readWord(std::string_view word) {
    next();
    if (!ok_ || std::strncmp(at_, word.data(), word.size()) != 0) return false;
    at_ += word.size();
    return true;
}

}  // namespace tools
