// The forms that take comments, held against the JSON library's: the same passages are comments.
#include <gtest/gtest.h>

#include "tests/differential/json_generator.h"
#include "tests/differential/json_readers.h"

namespace {

using test::expectSameWithComments;
using test::JsonGenerator;

}  // namespace

TEST(JsonComments, AreThoseOfTheLibraryInGeneratedTexts) {
    JsonGenerator generator(9, JsonGenerator::Comments::between);
    int accepted = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::string text = generator.value(4);
        ASSERT_NO_FATAL_FAILURE(expectSameWithComments(text));
        if (test::isAcceptedWithComments(text)) ++accepted;
    }
    // As for texts without comments, enough of both kinds.
    EXPECT_GT(accepted, 5000);
    EXPECT_LT(accepted, 18500);
}

TEST(JsonComments, AreThoseOfTheLibraryInBrokenTexts) {
    JsonGenerator generator(10, JsonGenerator::Comments::between);
    for (int i = 0; i < 20000; ++i)
        ASSERT_NO_FATAL_FAILURE(expectSameWithComments(generator.broken(generator.value(4))));
}

TEST(JsonComments, AreThoseOfTheLibraryInEveryShortText) {
    ASSERT_NO_FATAL_FAILURE(test::forEachText("/*\"\\\n1,]", 5, [](const std::string& text) {
        expectSameWithComments("[\"" + text + "2]");
        expectSameWithComments("[1" + text + "\n2]");
    }));
}

TEST(JsonComments, StandWhereTheLibraryTakesThem) {
    for (const char* text : {"/* c */ 1", "// c\n1", "1 // c", "1 /* c", "[1 /* c", "[1, // c", "/**/", "//", "/", "",
                             "-/**/", "\xEF\xBB\xBF[1]", "/**/\xEF\xBB\xBF[1]", "\xEF\xBB\xBF/**/[1]", "[01/**/]",
                             "[1/**/2]", R"(["/* text */","// text"])", R"({"a":1,/**/"a":2})", R"({"a\u0000b":1}//)"})
        ASSERT_NO_FATAL_FAILURE(expectSameWithComments(text)) << text;
    ASSERT_NO_FATAL_FAILURE(expectSameWithComments(std::string("[1]\0/*", 6)));
}

TEST(JsonComments, LeaveTheDepthAsItIs) {
    JsonGenerator generator(11);
    for (int depth : {2047, 2048, 2049, 2050})
        ASSERT_NO_FATAL_FAILURE(expectSameWithComments(generator.nested(depth, "/* c */"))) << depth;
}
