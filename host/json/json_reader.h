// Reads JSON text piece by piece, without building a tree: a message file of a day is read once, from front to back,
// and a tree of it costs more than everything that is done with the messages.
//
// What it accepts, and what it makes of it, is exactly what the JSON library accepts and makes of the same text; the
// tests hold both against each other. In particular: text after the root value is ignored, and so is everything from
// the first NUL on; one byte-order mark is skipped; a duplicate key, a leading zero, a number out of the range of a
// double and nesting deeper than 2048 make the whole text invalid; ill-formed UTF-8 is accepted.
#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "host/json/json_number.h"

namespace tools {

/// The names that one object has had so far, to notice a duplicate. Few are compared one by one, many by their hash: an
/// object of 100,000 names must not take minutes.
class JsonNames {
public:
    /// False when the name was there.
    [[nodiscard]] bool add(std::string_view name);

private:
    std::vector<std::string_view> few_;
    std::unordered_set<std::string_view> many_;
};

class JsonReader {
public:
    /// Reads `text`, decoding its strings in place: the text is changed, must outlive the reader, and its strings stay
    /// valid as long as it does.
    explicit JsonReader(std::string& text);

    /// False from the first error on. Everything read until then has to be thrown away: the library refuses such a text
    /// as a whole. After a failure every read gives nothing and every loop ends.
    [[nodiscard]] bool ok() const { return ok_; }

    /// Declares the text invalid: nothing of it is left to read.
    void reject() {
        ok_ = false;
        at_ = end_;
    }

    /// How much of the text is left, an upper limit for what can still be read from it.
    [[nodiscard]] std::size_t bytesLeft() const { return static_cast<std::size_t>(end_ - at_); }

    /// What stands next. At most one is true; none before something invalid.
    [[nodiscard]] bool atObject() { return next() == '{'; }
    [[nodiscard]] bool atArray() { return next() == '['; }
    [[nodiscard]] bool atString() { return next() == '"'; }
    [[nodiscard]] bool atNumber();

    /// Enters an object or array that stands next. Its members or elements follow by nextMember() or nextElement(),
    /// each of them followed by the reading (or skipping) of the value, until the call gives false.
    void enter();
    [[nodiscard]] bool nextMember(std::string_view& name) {
        if (!nextMember()) return false;
        name = readName();
        return ok_;
    }
    [[nodiscard]] bool nextElement() { return nextItem(']'); }

    /// The form for who knows the name: when there is another member, its name has to be passed or read next. Passing
    /// works for the name `expected` in its plain spelling, without escapes and blanks.
    [[nodiscard]] bool nextMember() { return nextItem('}'); }
    [[nodiscard]] bool passName(std::string_view expected);
    [[nodiscard]] std::string_view readName();

    /// Reads the string or number that stands next. readText() gives the string up to its first NUL, as the library's
    /// plain accessor does.
    [[nodiscard]] std::string_view readString();
    [[nodiscard]] std::string_view readText();
    [[nodiscard]] JsonNumber readNumber();

    /// Reads past `word`, which is "true", "false" or "null", if it stands next. False when something else does.
    [[nodiscard]] bool readWord(std::string_view word);

    /// Reads past the value that stands next, whatever it is, checking it on the way.
    void skip();

private:
    static constexpr int kDeepest = 2048;  // the library's limit

    char next();
    bool nextItem(char closing);
    std::string_view readQuoted(bool& escaped);
    void passOrdinary();
    bool decodeString(char* begin, std::string_view& text);
    bool decodeEscape(char*& out);
    bool decodeUnicode(char*& out);
    bool readHex4(unsigned& code);
    void skipScalar();

    char* at_;
    char* end_;  // a NUL stands there
    bool ok_ = true;
    bool first_ = false;  // nothing has been read yet of the object or array entered last
    int depth_ = 0;
};

// --- What is called several times for every member stands here, to be inlined ---

inline char JsonReader::next() {
    while (*at_ == ' ' || (*at_ >= '\t' && *at_ <= '\r'))
        ++at_;
    return *at_;
}

inline bool JsonReader::atNumber() {
    const char c = next();
    return c == '-' || (c >= '0' && c <= '9');
}

// True when another member or element follows; false at the closing bracket, which is passed, and for errors.
inline bool JsonReader::nextItem(char closing) {
    char c = next();
    if (c == closing) {
        ++at_;
        --depth_;
        first_ = false;
        return false;
    }
    if (!first_) {
        if (c != ',') reject();
        if (!ok_) return false;
        ++at_;
        c = next();
        if (c == closing) reject();
    }
    first_ = false;
    if (depth_ > kDeepest) reject();
    return ok_;
}

inline bool JsonReader::passName(std::string_view expected) {
    const std::size_t size = expected.size();
    const bool stands = static_cast<std::size_t>(end_ - at_) > size + 2 && at_[0] == '"' && at_[size + 1] == '"' &&
                        at_[size + 2] == ':' && std::memcmp(at_ + 1, expected.data(), size) == 0;
    if (stands) at_ += size + 3;
    return stands;
}

/// The rest of an object whose members up to here were read by the caller: `seen` says which of `names` it had. `more`
/// is what nextMember() gave.
template <std::size_t Count, class OnMember>
void readJsonMembers(JsonReader& reader, bool more, const std::array<std::string_view, Count>& names,
                     std::array<bool, Count> seen, OnMember onMember) {
    std::optional<JsonNames> others;
    std::size_t expected = 0;
    for (; more; more = reader.nextMember()) {
        std::size_t index = expected;
        std::string_view name;
        if (expected >= Count || !reader.passName(names[expected])) {
            name = reader.readName();
            for (index = 0; index < Count && names[index] != name;)
                ++index;
        }
        if (index < Count) {
            const bool isNew = !seen[index];
            seen[index] = true;
            expected = index + 1;
            onMember(index);
            if (!isNew) reader.reject();
        } else {
            if (!others) others.emplace();
            const bool isNew = others->add(name);
            reader.skip();
            if (!isNew) reader.reject();
        }
    }
}

/// Reads an object that stands next: for each member whose name is `names[i]`, calls onMember(i), which must read or
/// skip the value; other members are skipped. Members usually come in the order of `names`, so the next one is tried
/// first.
template <std::size_t Count, class OnMember>
void readJsonObject(JsonReader& reader, const std::array<std::string_view, Count>& names, OnMember onMember) {
    reader.enter();
    readJsonMembers(reader, reader.nextMember(), names, {}, onMember);
}

}  // namespace tools
