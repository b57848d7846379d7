// The reader that builds no tree, held against the JSON library: same texts accepted, same values found.
#include "host/json/json_reader.h"

#include <gtest/gtest.h>

#include <cstring>

#include "host/json/json_numbers.h"
#include "host/json/json_owner.h"
#include "host/json/json_stock.h"
#include "host/json/json_tree.h"
#include "tests/differential/json_generator.h"

namespace {

// The tree that the library's own parser makes.
tools::JsonDocument parseByLibrary(const std::string& text) {
    chatTransferJsonBeginParse();
    tools::JsonDocument document(chat_transfer_stock_parse_string(text.c_str()));
    chatTransferJsonEndParse(document ? 1 : 0);
    return document;
}

// A spelling of values that tells all of them apart; "-0" and "0", and texts with NULs, included.
void spellNumber(std::string& out, double value, long long exact) {
    unsigned long long bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    out += "#" + std::to_string(bits) + "/" + std::to_string(exact);
}

void spellText(std::string& out, std::string_view text) {
    out += "'" + std::to_string(text.size()) + ":";
    out += text;
}

void spellTree(std::string& out, JSON_Value* value) {
    if (JSON_Object* object = json_value_get_object(value)) {
        out += '{';
        for (size_t i = 0; i < json_object_get_count(object); ++i) {
            spellText(out, json_object_get_name(object, i));
            spellTree(out, json_object_get_value_at(object, i));
        }
        out += '}';
    } else if (JSON_Array* array = json_value_get_array(value)) {
        out += '[';
        for (size_t i = 0; i < json_array_get_count(array); ++i) {
            if (json_value_get_type(json_array_get_value(array, i)) == JSONNumber) {
                spellNumber(out, json_array_get_number(array, i), json_array_get_int64(array, i));
            } else {
                spellTree(out, json_array_get_value(array, i));
            }
        }
        out += ']';
    } else if (json_value_get_type(value) == JSONString) {
        spellText(out, {json_value_get_string(value), json_value_get_string_len(value)});
    } else if (json_value_get_type(value) == JSONNumber) {
        // Outside of arrays the exact value is read through the parent object.
        JSON_Object* parent = json_value_get_object(json_value_get_parent(value));
        for (size_t i = 0; i < json_object_get_count(parent); ++i) {
            if (json_object_get_value_at(parent, i) != value) continue;
            const char* name = json_object_get_name(parent, i);
            spellNumber(out, json_object_get_number(parent, name), json_object_get_int64(parent, name));
        }
    } else {
        out += "w";
    }
}

void spellRead(std::string& out, tools::JsonReader& reader) {
    if (reader.atObject()) {
        out += '{';
        tools::JsonNames names;
        std::string_view name;
        reader.enter();
        while (reader.nextMember(name)) {
            if (!names.add(name)) reader.reject();
            spellText(out, name);
            spellRead(out, reader);
        }
        out += '}';
    } else if (reader.atArray()) {
        out += '[';
        reader.enter();
        while (reader.nextElement())
            spellRead(out, reader);
        out += ']';
    } else if (reader.atString()) {
        spellText(out, reader.readString());
    } else if (reader.atNumber()) {
        const tools::JsonNumber number = reader.readNumber();
        spellNumber(out, number.value, number.exact);
    } else {
        reader.skip();
        out += "w";
    }
}

const std::string kRefused = "refused";

// Both spell only objects and arrays: other roots are nothing that the transfer reads.
std::string byLibrary(const std::string& text) {
    const tools::JsonDocument document = parseByLibrary(text);
    const JSON_Value_Type type = json_value_get_type(document.get());
    if (type != JSONObject && type != JSONArray) return kRefused;
    std::string out;
    spellTree(out, document.get());
    return out;
}

std::string byTree(std::string text) {
    const tools::JsonDocument document = tools::readJsonTree(text);
    const JSON_Value_Type type = json_value_get_type(document.get());
    if (type != JSONObject && type != JSONArray) return kRefused;
    std::string out;
    spellTree(out, document.get());
    return out;
}

std::string byReader(std::string text) {
    tools::JsonReader reader(text);
    std::string out;
    if (!reader.atObject() && !reader.atArray()) return kRefused;
    spellRead(out, reader);
    return reader.ok() ? out : kRefused;
}

std::string bySkipping(std::string text) {
    tools::JsonReader reader(text);
    if (!reader.atObject() && !reader.atArray()) return kRefused;
    reader.skip();
    return reader.ok() ? "accepted" : kRefused;
}

void expectSame(const std::string& text) {
    const std::string expected = byLibrary(text);
    ASSERT_EQ(expected, byReader(text)) << text;
    ASSERT_EQ(expected, byTree(text)) << text;
    ASSERT_EQ(expected == kRefused, bySkipping(text) == kRefused) << text;
}

std::string nested(int depth, const std::string& inside) {
    const auto count = static_cast<std::size_t>(depth);
    return std::string(count, '[') + inside + std::string(count, ']');
}

}  // namespace

TEST(JsonReader, AgreesWithTheLibraryOnGeneratedTexts) {
    test::JsonGenerator generator(1);
    int accepted = 0;
    for (int i = 0; i < 40000; ++i) {
        const std::string text = generator.value(5);
        ASSERT_NO_FATAL_FAILURE(expectSame(text));
        if (byLibrary(text) != kRefused) ++accepted;
    }
    // The generator must produce enough of both kinds for the comparison to mean something.
    EXPECT_GT(accepted, 5000);
    EXPECT_LT(accepted, 35000);
}

TEST(JsonReader, AgreesWithTheLibraryOnBrokenTexts) {
    test::JsonGenerator generator(2);
    for (int i = 0; i < 40000; ++i)
        ASSERT_NO_FATAL_FAILURE(expectSame(generator.broken(generator.value(4))));
}

TEST(JsonReader, AgreesWithTheLibraryOnEveryTruncation) {
    const std::string text =
        "\xEF\xBB\xBF "
        "{\"version\":\"1.0\",\"msgs\":[{\"msgs\":[{\"message\":\"a\\u00e9\\ud83d\\ude00\\n\",\"messageID\":"
        "9007199254740993,\"x\":[1,-2.5e3,true,null,{}]}],\"date\":{\"year\":2019}}]} trailing";
    for (std::size_t length = 0; length <= text.size(); ++length) {
        ASSERT_NO_FATAL_FAILURE(expectSame(text.substr(0, length)));
    }
}

TEST(JsonReader, AgreesWithTheLibraryOnEveryFlippedBit) {
    const std::string text = R"({"a":[1,2.5,"x\u0041\\y"],"b":{"c":-0,"d":null},"e":false})";
    for (std::size_t bit = 0; bit < text.size() * 8; ++bit) {
        std::string flipped = text;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
        ASSERT_NO_FATAL_FAILURE(expectSame(flipped));
    }
}

TEST(JsonReader, AgreesWithTheLibraryOnDigitsOfEveryCount) {
    const std::string digits = "1234567890123456789012";
    for (std::size_t count = 1; count <= digits.size(); ++count) {
        for (const char* behind : {"", ",7", " ", ".5", "e2", "/", ":", "0", "x", "\x80"}) {
            const std::string number = digits.substr(0, count) + behind;
            ASSERT_NO_FATAL_FAILURE(expectSame("[" + number + "]"));
            ASSERT_NO_FATAL_FAILURE(expectSame("[-" + number + "]"));
            ASSERT_NO_FATAL_FAILURE(expectSame("[" + number));
            ASSERT_NO_FATAL_FAILURE(expectSame("[" + number + ",                    8]"));
        }
    }
}

TEST(JsonReader, AgreesWithTheLibraryOnSpecialBytesAtEveryPlaceOfAText) {
    const std::string letters = "abcdefghijklmnopqrstuvwxyz";
    for (std::size_t place = 0; place <= letters.size(); ++place) {
        for (const char* special : {"\\n", "\\u0000", "\\\"", "\\x", "\"", "\n", "\x1F", "\x7F", "\x80", "\xFF", "/"}) {
            const std::string text = letters.substr(0, place) + special + letters.substr(place);
            ASSERT_NO_FATAL_FAILURE(expectSame("[\"" + text + "\"]"));
            ASSERT_NO_FATAL_FAILURE(expectSame("[\"" + text + special + "\",\"" + text + "\"]"));
            ASSERT_NO_FATAL_FAILURE(expectSame("{\"" + text + "\":1}"));
        }
    }
}

TEST(JsonReader, AgreesWithTheLibraryOnTheDeepestNesting) {
    for (int depth : {2047, 2048, 2049, 2050, 5000}) {
        ASSERT_NO_FATAL_FAILURE(expectSame(nested(depth, ""))) << depth;
        ASSERT_NO_FATAL_FAILURE(expectSame(nested(depth, "1"))) << depth;
        ASSERT_NO_FATAL_FAILURE(expectSame(nested(depth, "{}"))) << depth;
    }
}

TEST(JsonTree, HasAnyKindOfRoot) {
    for (const char* root : {"1", "-0.5e3", R"("x\u0000y")", "true", "false", "null", " [] ", "\xEF\xBB\xBF{}", "nul",
                             "\"x", "truefalse", "1x", "", "-", "-B"}) {
        std::string text = root;
        const tools::JsonDocument tree = tools::readJsonTree(text);
        const tools::JsonDocument expected = parseByLibrary(root);
        ASSERT_EQ(expected == nullptr, tree == nullptr) << root;
        EXPECT_TRUE(tree == nullptr || json_value_equals(expected.get(), tree.get()) != 0) << root;
    }
}

TEST(JsonReader, IgnoresWhatFollowsTheFirstNul) {
    expectSame(std::string("{\"a\":1}\0{", 9));
}

TEST(JsonReader, RefusesADuplicateAmongManyNames) {
    std::string text = "{";
    for (int i = 0; i < 100000; ++i)
        text += "\"k" + std::to_string(i) + "\":0,";
    EXPECT_EQ("accepted", bySkipping(text + "\"last\":0}"));
    EXPECT_EQ(kRefused, bySkipping(text + "\"k99999\":0}"));
    EXPECT_EQ(kRefused, bySkipping(text + "\"k0\":0}"));
}
