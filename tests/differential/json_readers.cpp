#include "tests/differential/json_readers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "host/json/json_reader.h"
#include "host/json/json_text.h"
#include "host/json/json_tree.h"
#include "tests/support/stock_parser.h"

namespace test {
namespace {

// What was read: our spelling tells all values apart, "-0" and "0" and texts with NULs included; the 64-bit integers
// stand beside it, in the order of the text. Those of a root are not asked for: the accessors want its owner.
struct Reading {
    std::string text = kRefused;
    std::vector<long long> integers;
};

bool operator==(const Reading& one, const Reading& other) {
    return one.text == other.text && one.integers == other.integers;
}

std::string spell(const JSON_Value* tree) {
    char* text = json_serialize_to_string(tree);
    std::string result = text != nullptr ? text : kRefused;
    json_free_serialized_string(text);
    return result;
}

void collectIntegers(std::vector<long long>& integers, const JSON_Value* value) {
    const JSON_Object* object = json_value_get_object(value);
    for (std::size_t i = 0; i < json_object_get_count(object); ++i) {
        const JSON_Value* member = json_object_get_value_at(object, i);
        if (json_value_get_type(member) == JSONNumber)
            integers.push_back(json_object_get_int64(object, json_object_get_name(object, i)));
        collectIntegers(integers, member);
    }
    const JSON_Array* array = json_value_get_array(value);
    for (std::size_t i = 0; i < json_array_get_count(array); ++i) {
        const JSON_Value* element = json_array_get_value(array, i);
        if (json_value_get_type(element) == JSONNumber) integers.push_back(json_array_get_int64(array, i));
        collectIntegers(integers, element);
    }
}

Reading read(const tools::JsonDocument& tree) {
    Reading reading;
    reading.text = spell(tree.get());
    collectIntegers(reading.integers, tree.get());
    return reading;
}

class PlainReading {
public:
    explicit PlainReading(std::string text) : text_(std::move(text)), reader_(text_) {}

    Reading read() {
        readValue(true);
        return reader_.ok() ? Reading{std::string(out_.text()), integers_} : Reading{};
    }

private:
    void readValue(bool isRoot = false) {
        if (reader_.atObject()) {
            readObject();
        } else if (reader_.atArray()) {
            readArray();
        } else if (reader_.atString()) {
            tools::appendJsonString(out_, reader_.readString());
        } else if (reader_.atNumber()) {
            const tools::JsonNumber number = reader_.readNumber();
            tools::appendJsonNumber(out_, number.value);
            if (!isRoot) integers_.push_back(number.exact);
        } else {
            readWord();
        }
    }

    void readObject() {
        out_ += '{';
        tools::JsonNames names;
        std::string_view name;
        const char* comma = "";
        for (reader_.enter(); reader_.nextMember(name); comma = ",") {
            if (!names.add(name)) reader_.reject();
            out_ += comma;
            tools::appendJsonString(out_, name);
            out_ += ':';
            readValue();
        }
        out_ += '}';
    }

    void readArray() {
        out_ += '[';
        const char* comma = "";
        for (reader_.enter(); reader_.nextElement(); comma = ",") {
            out_ += comma;
            readValue();
        }
        out_ += ']';
    }

    void readWord() {
        for (const char* word : {"true", "false", "null"}) {
            if (!reader_.readWord(word)) continue;
            out_ += word;
            return;
        }
        reader_.reject();
    }

    std::string text_;
    tools::JsonReader reader_;
    tools::TextBuffer out_;
    std::vector<long long> integers_;
};

// The library has no integers beside its doubles; where a double is exact, neither have we.
void expectIntegersOf(const Reading& library, const Reading& ours, const std::string& text) {
    constexpr long long kExactInDouble = 1LL << 53;
    ASSERT_EQ(library.integers.size(), ours.integers.size()) << text;
    for (std::size_t i = 0; i < ours.integers.size(); ++i) {
        const long long integer = ours.integers[i];
        const long long theirs = library.integers[i];
        ASSERT_EQ(static_cast<double>(theirs), static_cast<double>(integer)) << text;
        if (-kExactInDouble < theirs && theirs < kExactInDouble) {
            ASSERT_EQ(theirs, integer) << text;
        }
    }
}

}  // namespace

std::string bySkipping(std::string text) {
    tools::JsonReader reader(text);
    reader.skip();
    return reader.ok() ? "accepted" : kRefused;
}

bool isAccepted(const std::string& text) {
    return parseByLibrary(text) != nullptr;
}

bool isAcceptedWithComments(const std::string& text) {
    return parseByLibrary(text, chat_transfer_stock_parse_string_with_comments) != nullptr;
}

void expectSame(const std::string& text) {
    const Reading library = read(parseByLibrary(text));
    std::string changed = text;
    const Reading tree = read(tools::readJsonTree(changed));
    ASSERT_EQ(library.text, tree.text) << text;
    ASSERT_NO_FATAL_FAILURE(expectIntegersOf(library, tree, text));
    ASSERT_TRUE(tree == PlainReading(text).read()) << text;
    ASSERT_EQ(library.text == kRefused, bySkipping(text) == kRefused) << text;
}

void expectSameWithComments(const std::string& text) {
    const Reading library = read(parseByLibrary(text, chat_transfer_stock_parse_string_with_comments));
    const Reading ours = read(tools::JsonDocument(json_parse_string_with_comments(text.c_str())));
    ASSERT_EQ(library.text, ours.text) << text;
    ASSERT_NO_FATAL_FAILURE(expectIntegersOf(library, ours, text));
}

}  // namespace test
