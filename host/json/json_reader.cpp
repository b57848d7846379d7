#include "host/json/json_reader.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "host/json/byte_lanes.h"

namespace tools {
namespace {

constexpr std::size_t kFewNames = 32;

// Flags those of eight bytes that end a string, begin an escape or are control characters.
std::uint64_t notOrdinary(std::uint64_t bytes) {
    return anyControl(bytes) | anyZero(bytes ^ eachByte('"')) | anyZero(bytes ^ eachByte('\\'));
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

void JsonReader::enter() {
    if (!ok_) return;
    ++at_;
    ++depth_;
    first_ = true;
}

std::string_view JsonReader::readName() {
    bool escaped = false;
    const std::string_view name = readQuoted(escaped);
    const bool hasNul = escaped && name.find('\0') != std::string_view::npos;
    if (next() != ':' || hasNul) {
        reject();
        return {};
    }
    ++at_;
    return name;
}

std::string_view JsonReader::readString() {
    bool escaped = false;
    return readQuoted(escaped);
}

std::string_view JsonReader::readText() {
    bool escaped = false;
    const std::string_view text = readQuoted(escaped);
    // A NUL has to be spelled as an escape.
    return escaped ? text.substr(0, text.find('\0')) : text;
}

std::string_view JsonReader::readQuoted(bool& escaped) {
    if (!atString()) {
        reject();
        return {};
    }
    char* begin = ++at_;
    passOrdinary();
    std::string_view text(begin, static_cast<std::size_t>(at_ - begin));
    if (*at_ == '"') {
        ++at_;
        return text;
    }
    escaped = true;
    if (*at_ == '\\' && decodeString(begin, text)) return text;
    reject();
    return {};
}

// Passes what stands for itself in a string.
void JsonReader::passOrdinary() {
    while (end_ - at_ >= 8) {
        const std::uint64_t flags = notOrdinary(lanesAt(at_));
        if (flags != 0) {
            at_ += firstFlagged(flags);
            return;
        }
        at_ += 8;
    }
    while (static_cast<unsigned char>(*at_) >= 0x20 && *at_ != '"' && *at_ != '\\')
        ++at_;
}

// Goes on from the first escape of a string, moving its decoded text together.
bool JsonReader::decodeString(char* begin, std::string_view& text) {
    char* out = at_;
    while (*at_ != '"') {
        if (*at_ == '\\') {
            if (!decodeEscape(out)) return false;
            continue;
        }
        char* const run = at_;
        passOrdinary();
        if (at_ == run) return false;  // a control character
        out = std::copy(run, at_, out);
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
    constexpr int kSize = 6;
    if (end_ - at_ < kSize || std::from_chars(at_ + 2, at_ + kSize, code, 16).ptr != at_ + kSize) return false;
    at_ += kSize;
    return true;
}

JsonNumber JsonReader::readNumber() {
    JsonNumber number;
    const char* const end = atNumber() ? detail::readJsonNumber(at_, end_, number) : nullptr;
    if (end == nullptr) {
        reject();
        return {};
    }
    at_ += end - at_;
    return number;
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
    // Read to be checked; what they say is not asked for.
    if (atString()) {
        static_cast<void>(readString());
    } else if (!readWord("true") && !readWord("false") && !readWord("null")) {
        static_cast<void>(readNumber());
    }
}

bool JsonReader::readWord(std::string_view word) {
    next();
    if (!ok_ || std::strncmp(at_, word.data(), word.size()) != 0) return false;
    at_ += word.size();
    return true;
}

}  // namespace tools
