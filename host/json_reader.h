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
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace tools {

/// A number as the library's accessors give it.
struct JsonNumber {
    double value = 0;
    long long exact = 0;  ///< json_object_get_int64()'s value
};

/// The names that one object has had so far, to notice a duplicate. Few are compared one by one, many by their hash: an
/// object of 100,000 names must not take minutes.
class JsonNames {
public:
    /// False when the name was there.
    bool add(std::string_view name);

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
    bool ok() const { return ok_; }

    /// Declares the text invalid.
    void reject() { ok_ = false; }

    /// What stands next. At most one is true; none before something invalid.
    bool atObject() { return next() == '{'; }
    bool atArray() { return next() == '['; }
    bool atString() { return next() == '"'; }
    bool atNumber();

    /// Enters an object or array that stands next. Its members or elements follow by nextMember() or nextElement(),
    /// each of them followed by the reading (or skipping) of the value, until the call gives false.
    void enter();
    bool nextMember(std::string_view& name);
    bool nextElement();

    /// Reads the string or number that stands next.
    std::string_view readString();
    JsonNumber readNumber();

    /// Reads past `word`, which is "true", "false" or "null", if it stands next. False when something else does.
    bool readWord(std::string_view word);

    /// Reads past the value that stands next, whatever it is, checking it on the way.
    void skip();

private:
    char next();
    void skipBlanks();
    bool nextItem(char closing);
    bool decodeString(char* begin, std::string_view& text);
    bool decodeEscape(char*& out);
    bool decodeUnicode(char*& out);
    bool readHex4(unsigned& code);
    void skipScalar();

    char* at_;
    const char* end_;
    bool ok_ = true;
    bool first_ = false;  // nothing has been read yet of the object or array entered last
    int depth_ = 0;
};

/// Reads an object that stands next: for each member whose name is `names[i]`, calls onMember(i), which must read or
/// skip the value; other members are skipped. Members usually come in the order of `names`, so the next one is tried
/// first.
template <std::size_t Count, class OnMember>
void readJsonObject(JsonReader& reader, const std::array<std::string_view, Count>& names, OnMember onMember) {
    std::array<bool, Count> seen{};
    JsonNames others;
    std::size_t expected = 0;
    std::string_view name;
    reader.enter();
    while (reader.nextMember(name)) {
        std::size_t index = expected;
        if (index >= Count || names[index] != name) {
            for (index = 0; index < Count && names[index] != name;)
                ++index;
        }
        const bool isNew = index < Count ? !seen[index] : others.add(name);
        if (index < Count) {
            seen[index] = true;
            expected = index + 1;
            onMember(index);
        } else {
            reader.skip();
        }
        if (!isNew) reader.reject();
    }
}

}  // namespace tools
