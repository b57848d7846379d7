// Reading: which files and which texts are taken.
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/host/json/json_document.h"
#include "tests/support/posix_helpers.h"
#include "tests/support/temp_dir.h"

namespace {

using test::arrayOf;
using test::compactText;
using test::objectOf;
using test::parseJson;
using tools::JsonDocument;

bool accepts(const std::string& text) {
    return parseJson(text) != nullptr;
}

std::string nested(std::size_t depth) {
    return std::string(depth, '[') + "7" + std::string(depth, ']');
}

class JsonFileTest : public testing::Test {
protected:
    JsonDocument parse(const std::string& name) const { return JsonDocument(json_parse_file(dir.at(name).c_str())); }
    JsonDocument parseNoLink(const std::string& name) const {
        return JsonDocument(json_parse_file_no_link(dir.at(name).c_str()));
    }
    std::string textOf(const std::string& bytes) const {
        dir.write("file", bytes);
        const JsonDocument document = parse("file");
        return document != nullptr ? compactText(document) : "(refused)";
    }

    test::TempDir dir;
};

TEST_F(JsonFileTest, AFileIsReadWhole) {
    const std::string text = R"([")" + std::string(3000000, 'x') + R"("])";
    EXPECT_TRUE(text == textOf(text));
}

TEST_F(JsonFileTest, IdsOfAFileAreExact) {
    dir.write("file", R"({"msgID":9007199254740993})");
    EXPECT_EQ(9007199254740993, json_object_get_int64(objectOf(parse("file")), "msgID"));
    EXPECT_EQ(9007199254740993, json_object_get_int64(objectOf(parseNoLink("file")), "msgID"));
}

TEST_F(JsonFileTest, OneByteOrderMarkIsSkipped) {
    EXPECT_EQ("[1]", textOf("\xEF\xBB\xBF[1]"));
    EXPECT_EQ("(refused)", textOf("\xEF\xBB\xBF\xEF\xBB\xBF[1]"));
}

TEST_F(JsonFileTest, AnEmptyFileIsRefused) {
    EXPECT_EQ("(refused)", textOf(""));
    EXPECT_EQ("(refused)", textOf("\xEF\xBB\xBF"));
    EXPECT_EQ("(refused)", textOf(" \n"));
    EXPECT_EQ("(refused)", textOf("\xEF"));
}

TEST_F(JsonFileTest, WhatIsNoRegularFileIsRefusedWithoutWaiting) {
    dir.makeDir("folder");
    test::makeFifo(dir.at("fifo"));
    test::makeLink(dir.at("fifo"), dir.at("link-to-fifo"));
    for (const char* name : {"folder", "fifo", "link-to-fifo", "missing", ""}) {
        EXPECT_EQ(nullptr, parse(name)) << name;
        EXPECT_EQ(nullptr, parseNoLink(name)) << name;
        EXPECT_EQ(nullptr, JsonDocument(json_parse_file_with_comments(dir.at(name).c_str()))) << name;
    }
    EXPECT_EQ(nullptr, JsonDocument(json_parse_file(nullptr)));
    EXPECT_EQ(nullptr, JsonDocument(json_parse_file_no_link(nullptr)));
}

TEST_F(JsonFileTest, AnUnreadableFileIsRefused) {
    std::filesystem::permissions(dir.path(), static_cast<std::filesystem::perms>(0755));
    std::filesystem::permissions(dir.write("file", "[1]"), static_cast<std::filesystem::perms>(0000));
    const test::OrdinaryUser user;
    EXPECT_EQ(nullptr, parse("file"));
}

TEST_F(JsonFileTest, ALinkIsFollowedOnlyByTheFormForOwnFiles) {
    test::makeLink(dir.write("file", "[1]"), dir.at("link"));
    EXPECT_NE(nullptr, parse("link"));
    EXPECT_EQ(nullptr, parseNoLink("link"));
    EXPECT_NE(nullptr, parseNoLink("file"));
}

TEST_F(JsonFileTest, CommentsAreTakenOnlyByTheirOwnForm) {
    dir.write("file", "[1 /* one */, 2 // two\n]");
    EXPECT_EQ(nullptr, parse("file"));
    EXPECT_EQ("[1,2]", compactText(JsonDocument(json_parse_file_with_comments(dir.at("file").c_str()))));
    EXPECT_EQ(nullptr, json_parse_string_with_comments(nullptr));
    EXPECT_EQ(nullptr, json_parse_file_with_comments(nullptr));
}

TEST(JsonDepthTest, TwoThousandLevelsAreRead) {
    const JsonDocument document = parseJson(nested(2000));
    ASSERT_NE(nullptr, document);
    EXPECT_EQ(nested(2000), compactText(document));
}

TEST(JsonDepthTest, DeeperTextsAreRefused) {
    EXPECT_FALSE(accepts(nested(3000)));
    EXPECT_FALSE(accepts(std::string(1000000, '[')));
    std::string objects;
    for (int i = 0; i < 3000; ++i)
        objects += R"({"a":)";
    EXPECT_FALSE(accepts(objects + "1" + std::string(3000, '}')));
}

TEST(JsonAcceptanceTest, TextAfterTheRootIsIgnored) {
    EXPECT_EQ("[1]", compactText(parseJson("[1] trailing")));
    EXPECT_EQ("{}", compactText(parseJson("{}{")));
}

TEST(JsonAcceptanceTest, ADuplicateKeyRefusesTheText) {
    EXPECT_FALSE(accepts(R"({"a":1,"a":2})"));
    EXPECT_TRUE(accepts(R"({"a":1,"b":{"a":2}})"));
}

TEST(JsonAcceptanceTest, ALeadingZeroRefusesTheText) {
    EXPECT_FALSE(accepts("[01]"));
    EXPECT_FALSE(accepts("[-01]"));
    EXPECT_FALSE(accepts("[00000000000000000001]"));
    EXPECT_TRUE(accepts("[0,-0,0.5,-0.5]"));
}

TEST(JsonAcceptanceTest, ANumberOutOfRangeRefusesTheText) {
    EXPECT_FALSE(accepts("[1e400]"));
    EXPECT_FALSE(accepts("[-1e400]"));
    EXPECT_FALSE(accepts("[" + std::string(400, '9') + "]"));
    EXPECT_FALSE(accepts("[1e-400]"));
    EXPECT_TRUE(accepts("[1e300,1e-300]"));
}

TEST(JsonAcceptanceTest, HexadecimalAndNamedNumbersAreRefused) {
    for (const char* text :
         {"[0x10]", "[-0x10]", "[nan]", "[NaN]", "[inf]", "[-inf]", "[-Infinity]", "[+1]", "[-]", "[.5]"})
        EXPECT_FALSE(accepts(text)) << text;
}

TEST(JsonAcceptanceTest, MalformedTextsAreRefused) {
    for (const char* text : {"", "{", "[", "[1", R"({"a"})", R"({"a":})", "{a:1}", "['a']", R"(["a])", R"(["\x"])",
                             R"(["\u12"])", R"(["\ud800"])", "nul", "tru", "}", ","})
        EXPECT_FALSE(accepts(text)) << text;
    EXPECT_EQ(nullptr, JsonDocument(json_parse_string(nullptr)));
}

TEST(JsonAcceptanceTest, EveryTruncationOfADocumentIsRefused) {
    const std::string text = R"({"id":9007199254740993,"a":[1,-2.5e3,"x\u00e9\n",true,null],"o":{"k":""}})";
    ASSERT_TRUE(accepts(text));
    for (std::size_t size = 0; size < text.size(); ++size)
        EXPECT_FALSE(accepts(text.substr(0, size))) << text.substr(0, size);
}

TEST(JsonAcceptanceTest, IllFormedUtf8IsTakenOnReadingAndRefusedOnBuilding) {
    const JsonDocument document = parseJson("[\"a\xFFz\"]");
    EXPECT_STREQ("a\xFFz", json_array_get_string(arrayOf(document), 0));
    EXPECT_EQ(JSONFailure, json_array_append_string(arrayOf(document), "a\xFFz"));
    EXPECT_EQ(1U, json_array_get_count(arrayOf(document)));
}

TEST(JsonAcceptanceTest, EscapesAreDecoded) {
    const JsonDocument document = parseJson(R"(["\"\\\/\b\f\n\r\t\u00e9\ud83d\ude00", "a\u0000b"])");
    EXPECT_STREQ("\"\\/\b\f\n\r\t\xC3\xA9\xF0\x9F\x98\x80", json_array_get_string(arrayOf(document), 0));
    EXPECT_EQ(3U, json_array_get_string_len(arrayOf(document), 1));
}

// Memory of a host: counts what the library takes and refuses from a given block on.
struct Memory {
    static long taken;
    static long returned;
    static long refusedFrom;  // negative: never

    static void* take(std::size_t size) {
        if (refusedFrom >= 0 && taken >= refusedFrom) return nullptr;
        ++taken;
        return std::malloc(size);
    }
    static void giveBack(void* block) {
        ++returned;
        std::free(block);
    }
};
long Memory::taken = 0;
long Memory::returned = 0;
long Memory::refusedFrom = -1;

class JsonMemoryTest : public testing::Test {
protected:
    void SetUp() override {
        Memory::taken = Memory::returned = 0;
        Memory::refusedFrom = -1;
        json_set_allocation_functions(Memory::take, Memory::giveBack);
    }
    void TearDown() override { json_set_allocation_functions(nullptr, nullptr); }
};

TEST_F(JsonMemoryTest, AllBlocksComeFromTheHostAndReturnToIt) {
    JsonDocument document = parseJson(R"({"id":9007199254740993,"a":[1,"x"]})");
    EXPECT_GT(Memory::taken, 5);
    EXPECT_EQ(9007199254740993, json_object_get_int64(objectOf(document), "id"));
    json_object_set_number(objectOf(document), "id", 1);
    EXPECT_EQ(R"({"id":1,"a":[1,"x"]})", compactText(document));
    document.reset();
    EXPECT_EQ(Memory::taken, Memory::returned);
}

TEST_F(JsonMemoryTest, NullFunctionsRestoreTheUsualMemory) {
    json_set_allocation_functions(nullptr, nullptr);
    EXPECT_EQ("[1]", compactText(parseJson("[1]")));
    EXPECT_EQ(0, Memory::taken);
    EXPECT_EQ(0, Memory::returned);
}

TEST_F(JsonMemoryTest, RunningOutOfMemoryGivesNoDocumentAndLeavesNothing) {
    const char* const text = R"({"id":9007199254740993,"a":[1,"x"],"b":{"c":true}})";
    for (const auto parse : {json_parse_string, json_parse_string_with_comments}) {
        bool parsed = false;
        for (Memory::refusedFrom = 0; !parsed && Memory::refusedFrom < 1000; ++Memory::refusedFrom) {
            Memory::taken = Memory::returned = 0;
            parsed = JsonDocument(parse(text)) != nullptr;
            ASSERT_EQ(Memory::taken, Memory::returned) << "block " << Memory::refusedFrom;
        }
        EXPECT_TRUE(parsed);
        EXPECT_GT(Memory::refusedFrom, 5);
    }
}

}  // namespace

namespace {

long long liveBlocks = 0;

void* countedAllocate(std::size_t size) {
    ++liveBlocks;
    return std::malloc(size);
}

void countedRelease(void* block) {
    if (block != nullptr) --liveBlocks;
    std::free(block);
}

}  // namespace

TEST(JsonParseTest, ARefusedTextLeavesNoMemoryBehind) {
    json_set_allocation_functions(countedAllocate, countedRelease);
    for (const char* text : {R"({"a\u0000b":1})", R"({"x":[1,{"a\u0000":2}]})", R"({"a":1,"a":2})", "[1,2"}) {
        EXPECT_EQ(nullptr, json_parse_string(text)) << text;
        EXPECT_EQ(0, liveBlocks) << text;
        EXPECT_EQ(nullptr, json_parse_string_with_comments(text)) << text;
        EXPECT_EQ(0, liveBlocks) << text;
    }
    json_set_allocation_functions(nullptr, nullptr);
}
