// Writing: the spelling of every kind of value, and what becomes of the file.
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <random>
#include <string>

#include "host/json/json_stock.h"
#include "tests/host/base/repeatable_random.h"
#include "tests/host/json/json_document.h"
#include "tests/support/posix_helpers.h"
#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using test::compactText;
using test::objectOf;
using test::parseJson;
using test::prettyText;
using tools::JsonDocument;

std::string taken(char* text) {
    std::string result = text != nullptr ? text : "(none)";
    json_free_serialized_string(text);
    return result;
}

void expectAsStock(const JsonDocument& document) {
    ASSERT_NE(nullptr, document);
    EXPECT_EQ(taken(chat_transfer_stock_serialize_to_string(document.get())), compactText(document));
    EXPECT_EQ(taken(chat_transfer_stock_serialize_to_string_pretty(document.get())), prettyText(document));
}

std::string written(double number) {
    return compactText(JsonDocument(json_value_init_number(number)));
}

std::string writtenText(const std::string& text) {
    return compactText(JsonDocument(json_value_init_string_with_len(text.data(), text.size())));
}

// Integral numbers in full, by the C library's own conversion.
std::string inFull(double number) {
    std::array<char, 400> digits{};
    (void)std::snprintf(digits.data(), digits.size(), "%.0f", number);
    return digits.data();
}

TEST(JsonNumberTextTest, IntegralNumbersAreWrittenPlainly) {
    EXPECT_EQ("0", written(0));
    EXPECT_EQ("-1", written(-1));
    EXPECT_EQ("1000000000000000", written(1e15));
    EXPECT_EQ("100000000000000000", written(1e17));
    EXPECT_EQ("10000000000000000000000", written(1e22));
    EXPECT_EQ("9007199254740992", written(9007199254740992.0));
    EXPECT_EQ("9223372036854775808", written(9223372036854775808.0));
    EXPECT_EQ("-9223372036854775808", written(-9223372036854775808.0));
}

TEST(JsonNumberTextTest, HugeIntegralNumbersAreWrittenInFull) {
    for (const double number : {1e300, -1e300, 123456789e200, std::numeric_limits<double>::max()})
        EXPECT_EQ(inFull(number), written(number));
}

TEST(JsonNumberTextTest, NegativeZeroKeepsItsSign) {
    EXPECT_EQ("-0", written(-0.0));
}

TEST(JsonNumberTextTest, FractionsHave17SignificantDigits) {
    EXPECT_EQ("1.5", written(1.5));
    EXPECT_EQ("0.10000000000000001", written(0.1));
    EXPECT_EQ("-2.7500000000000001e-08", written(-2.75e-8));
    EXPECT_EQ("4.9406564584124654e-324", written(5e-324));
}

TEST(JsonNumberTextTest, EveryDoubleIsReadBackExactly) {
    std::mt19937_64 random = test::repeatableRandom();
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = random();
        double number = 0;
        std::memcpy(&number, &bits, sizeof number);
        if (!std::isfinite(number) || std::fpclassify(number) == FP_SUBNORMAL) continue;
        const JsonDocument document = parseJson(written(number));
        ASSERT_EQ(number, json_value_get_number(document.get())) << written(number);
    }
}

TEST(JsonNumberTextTest, WhatIsNoNumberCannotBeBuilt) {
    EXPECT_EQ(nullptr, JsonDocument(json_value_init_number(std::nan(""))));
    EXPECT_EQ(nullptr, JsonDocument(json_value_init_number(HUGE_VAL)));
    EXPECT_EQ(nullptr, JsonDocument(json_value_init_number(-HUGE_VAL)));
}

TEST(JsonStringTextTest, ControlCharactersQuotesAndSlashesAreEscaped) {
    EXPECT_EQ(R"("\"\\\/\b\f\n\r\t")", writtenText("\"\\/\b\f\n\r\t"));
    EXPECT_EQ(R"("\u0000\u0001\u001f")", writtenText(std::string("\0\1\x1F", 3)));
}

TEST(JsonStringTextTest, OtherCharactersAreWrittenAsTheyAre) {
    const std::string text = "\x7F \xC3\xA9 \xE2\x80\xA8 \xF0\x9F\x98\x80";
    EXPECT_EQ(R"(")" + text + R"(")", writtenText(text));
    EXPECT_EQ(R"("")", writtenText(""));
}

TEST(JsonStringTextTest, SlashesMayStayAsTheyAre) {
    json_set_escape_slashes(0);
    EXPECT_EQ(R"("a/b")", writtenText("a/b"));
    json_set_escape_slashes(1);
    EXPECT_EQ("\"a\\/b\"", writtenText("a/b"));
}

TEST(JsonStringTextTest, EveryCharacterIsWrittenAsTheLibraryDoes) {
    std::string text;
    for (int c = 0; c < 128; ++c)
        text += static_cast<char>(c);
    expectAsStock(JsonDocument(json_value_init_string_with_len(text.data(), text.size())));
}

TEST(JsonTreeTextTest, AVariedTreeIsWrittenAsTheLibraryDoes) {
    expectAsStock(parseJson(R"({"empty":{},"none":[],"nested":[[],[{}],[[1,2],[3]]],"text":"a\"b\\c/d\u0001",
        "key \"quoted\"\n":{"a":{"b":{"c":[true,false,null]}}},"":"empty key",
        "numbers":[0,-0,1,-1,1.5,0.1,-2.75e-8,1e-300,123456789.125,2147483648,9007199254740992],
        "unicode":"\u0444\ud83d\ude00","emptyText":""})"));
}

TEST(JsonTreeTextTest, EveryKindOfRootIsWrittenAsTheLibraryDoes) {
    for (const char* text :
         {"{}", "[]", "null", "true", "false", "1.25", R"("text")", "[[[[]]]]", "[{}]", R"({"a":{}})"})
        expectAsStock(parseJson(text));
}

TEST(JsonTreeTextTest, PrettyTextIsIndentedByFourBlanks) {
    EXPECT_EQ("{\n    \"a\": [\n        1,\n        {}\n    ],\n    \"b\": []\n}",
              prettyText(parseJson(R"({"a":[1,{}],"b":[]})")));
}

TEST(JsonTreeTextTest, TheMembersKeepTheirOrder) {
    const JsonDocument document(json_value_init_object());
    for (const char* name : {"z", "a", "m"})
        json_object_set_number(objectOf(document), name, 1);
    EXPECT_EQ(R"({"z":1,"a":1,"m":1})", compactText(document));
}

TEST(JsonTreeTextTest, NoValueHasNoText) {
    EXPECT_EQ(nullptr, json_serialize_to_string(nullptr));
    EXPECT_EQ(nullptr, json_serialize_to_string_pretty(nullptr));
    EXPECT_EQ(0U, json_serialization_size(nullptr));
    EXPECT_EQ(0U, json_serialization_size_pretty(nullptr));
}

TEST(JsonBufferTest, TheSizeCountsTheNul) {
    const JsonDocument document = parseJson(R"({"a":[1,"x/y"]})");
    EXPECT_EQ(compactText(document).size() + 1, json_serialization_size(document.get()));
    EXPECT_EQ(prettyText(document).size() + 1, json_serialization_size_pretty(document.get()));
}

TEST(JsonBufferTest, ABufferOfThatSizeIsFilled) {
    const JsonDocument document = parseJson(R"({"a":[1,2]})");
    std::string compact(json_serialization_size(document.get()), '#');
    std::string pretty(json_serialization_size_pretty(document.get()), '#');
    EXPECT_EQ(JSONSuccess, json_serialize_to_buffer(document.get(), compact.data(), compact.size()));
    EXPECT_EQ(JSONSuccess, json_serialize_to_buffer_pretty(document.get(), pretty.data(), pretty.size()));
    EXPECT_STREQ(compactText(document).c_str(), compact.c_str());
    EXPECT_STREQ(prettyText(document).c_str(), pretty.c_str());
}

TEST(JsonBufferTest, ASmallerBufferIsLeftAsItIs) {
    const JsonDocument document = parseJson(R"({"a":[1,2]})");
    std::string buffer(json_serialization_size(document.get()) - 1, '#');
    const std::string before = buffer;
    EXPECT_EQ(JSONFailure, json_serialize_to_buffer(document.get(), buffer.data(), buffer.size()));
    EXPECT_EQ(JSONFailure, json_serialize_to_buffer_pretty(document.get(), buffer.data(), buffer.size()));
    EXPECT_EQ(JSONFailure, json_serialize_to_buffer(document.get(), buffer.data(), 0));
    EXPECT_EQ(before, buffer);
}

class JsonWriteFileTest : public testing::Test {
protected:
    JSON_Status write(const JsonDocument& tree, const std::string& name) const {
        return json_serialize_to_file(tree.get(), dir.at(name).c_str());
    }
    std::string read(const std::string& name) const { return test::readFile(dir.at(name)); }
    std::string names() const { return test::listing(dir.path()); }

    test::TempDir dir;
    JsonDocument document = parseJson(R"({"a":[1,2]})");
};

TEST_F(JsonWriteFileTest, HoldsTheTextAndNothingElseRemains) {
    EXPECT_EQ(JSONSuccess, write(document, "compact"));
    EXPECT_EQ(JSONSuccess, json_serialize_to_file_pretty(document.get(), dir.at("pretty").c_str()));
    EXPECT_EQ(compactText(document), read("compact"));
    EXPECT_EQ(prettyText(document), read("pretty"));
    EXPECT_EQ("compact pretty", names());
}

TEST_F(JsonWriteFileTest, OnlyTheOwnerMayReadIt) {
    const test::NoUmask noUmask;
    fs::permissions(dir.write("old", ""), static_cast<fs::perms>(0666));
    EXPECT_EQ(JSONSuccess, write(document, "new"));
    EXPECT_EQ(JSONSuccess, write(document, "old"));
    EXPECT_EQ(0600U, test::permissionsOf(dir.at("new")));
    EXPECT_EQ(0600U, test::permissionsOf(dir.at("old")));
}

TEST_F(JsonWriteFileTest, ReplacesAnExistingFile) {
    dir.write("file", std::string(1000, 'x'));
    EXPECT_EQ(JSONSuccess, write(document, "file"));
    EXPECT_EQ(compactText(document), read("file"));
}

TEST_F(JsonWriteFileTest, ReplacesALinkInsteadOfWritingThroughIt) {
    test::makeLink(dir.write("outside", "kept"), dir.at("link"));
    EXPECT_EQ(JSONSuccess, write(document, "link"));
    EXPECT_EQ("kept", read("outside"));
    EXPECT_EQ(compactText(document), read("link"));
}

TEST_F(JsonWriteFileTest, FailsIntoAMissingFolderAndOverADirectory) {
    dir.makeDir("folder");
    EXPECT_EQ(JSONFailure, write(document, "missing/file"));
    EXPECT_EQ(JSONFailure, write(document, "folder"));
    EXPECT_EQ(JSONFailure, json_serialize_to_file(document.get(), nullptr));
    EXPECT_EQ("folder", names());
}

TEST_F(JsonWriteFileTest, NoValueWritesNoFile) {
    EXPECT_EQ(JSONFailure, write(nullptr, "file"));
    EXPECT_EQ("", names());
}

TEST_F(JsonWriteFileTest, AFullDiskLeavesTheOldFile) {
    dir.write("file", "kept");
    const JsonDocument large(json_value_init_string(std::string(200000, 'x').c_str()));
    {
        const test::FileSizeLimit limit(100000);
        EXPECT_EQ(JSONFailure, write(large, "file"));
        EXPECT_EQ(JSONFailure, write(large, "new"));
    }
    EXPECT_EQ("kept", read("file"));
    EXPECT_EQ("file", names());
}

}  // namespace
