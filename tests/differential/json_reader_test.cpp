// The readers of this component, held against the JSON library's parser: same texts accepted, same values found.
#include <gtest/gtest.h>

#include <array>
#include <charconv>

#include "host/json/json_reader.h"
#include "tests/differential/json_generator.h"
#include "tests/differential/json_readers.h"

namespace {

using test::bySkipping;
using test::expectSame;
using test::kRefused;

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
        if (test::isAccepted(text)) ++accepted;
    }
    // The generator must produce enough of both kinds for the comparison to mean something.
    EXPECT_GT(accepted, 5000);
    EXPECT_LT(accepted, 38000);
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

TEST(JsonReader, AgreesWithTheLibraryOnTheDeepestNestingOfObjectsAndArrays) {
    test::JsonGenerator generator(6);
    for (int depth : {2047, 2048, 2049}) {
        for (const char* inside : {"", "1", R"("x")", "{}", "[]", "[[]]", "null]"})
            ASSERT_NO_FATAL_FAILURE(expectSame(generator.nested(depth, inside))) << depth << inside;
    }
}

TEST(JsonReader, AgreesWithTheLibraryOnEverySpellingOfANumber) {
    ASSERT_NO_FATAL_FAILURE(
        test::forEachText("-+019.ex", 5, [](const std::string& number) { expectSame("[" + number + "]"); }));
}

TEST(JsonReader, AgreesWithTheLibraryOnGeneratedFractionsAndExponents) {
    test::JsonGenerator generator(7);
    for (int i = 0; i < 40000; ++i)
        ASSERT_NO_FATAL_FAILURE(expectSame("[" + generator.longNumber() + "]"));
}

TEST(JsonReader, AgreesWithTheLibraryAtTheEndsOfTheRangeOfNumbers) {
    const std::string zeros(400, '0');
    for (const std::string& number : std::vector<std::string>{"1.7976931348623157e308",
                                                              "1.7976931348623158e308",
                                                              "1.7976931348623159e308",
                                                              "2.2250738585072014e-308",
                                                              "2.2250738585072011e-308",
                                                              "4.9406564584124654e-324",
                                                              "2.4703282292062328e-324",
                                                              "2e-324",
                                                              "1" + zeros,
                                                              "0." + zeros + "1",
                                                              "0." + zeros,
                                                              "0." + zeros + "e999",
                                                              "0e999",
                                                              "0.0e-999",
                                                              "-0.0",
                                                              "1e-0",
                                                              "1e+0",
                                                              "9007199254740992.5",
                                                              "9007199254740993.0",
                                                              "9223372036854775807.0",
                                                              "9223372036854775808e0"}) {
        ASSERT_NO_FATAL_FAILURE(expectSame("[" + number + "]"));
        ASSERT_NO_FATAL_FAILURE(expectSame("[-" + number + "]"));
    }
}

TEST(JsonReader, GivesIntegersOfUpTo19DigitsExactly) {
    test::JsonGenerator generator(8);
    for (int i = 0; i < 20000; ++i) {
        const std::string digits = generator.digits(1 + generator.upTo(19));
        long long expected = 0;
        if (std::from_chars(digits.data(), digits.data() + digits.size(), expected).ec != std::errc()) continue;
        std::string text = digits + " ";
        ASSERT_EQ(expected, tools::JsonReader(text).readNumber().exact) << digits;
    }
}

TEST(JsonTree, HasAnyKindOfRoot) {
    for (const char* root : {"1", "-0.5e3", R"("x\u0000y")", "true", "false", "null", " [] ", "\xEF\xBB\xBF{}", "nul",
                             "\"x", "truefalse", "1x", "", "-", "-B"})
        ASSERT_NO_FATAL_FAILURE(expectSame(root));
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
