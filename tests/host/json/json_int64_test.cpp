#include <algorithm>
#include <climits>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "tests/host/base/repeatable_random.h"
#include "tests/host/json/json_document.h"

namespace {

using test::arrayOf;
using test::objectOf;
using test::parseJson;
using tools::JsonDocument;

long long member(const std::string& literal) {
    const JsonDocument document = parseJson(R"({"id":)" + literal + "}");
    EXPECT_NE(nullptr, document) << literal;
    return json_object_get_int64(objectOf(document), "id");
}

long long element(const std::string& literal) {
    const JsonDocument document = parseJson("[0," + literal + "]");
    EXPECT_NE(nullptr, document) << literal;
    return json_array_get_int64(arrayOf(document), 1);
}

JsonDocument idsFrom(long long first) {
    std::string text = R"({"ids":[)";
    for (long long id = first; id < first + 5; ++id)
        text += std::to_string(id) + (id < first + 4 ? "," : "");
    return parseJson(text + "]}");
}

bool holdsIdsFrom(const JsonDocument& document, long long first) {
    const JSON_Array* ids = json_object_get_array(objectOf(document), "ids");
    for (long long i = 0; i < 5; ++i)
        if (json_array_get_int64(ids, static_cast<std::size_t>(i)) != first + i) return false;
    return json_array_get_count(ids) == 5;
}

TEST(JsonInt64Test, EveryIntegerOfUpTo19DigitsIsExact) {
    for (const long long number :
         {0LL, 1LL, -1LL, 2147483648LL, 9007199254740991LL, 9007199254740992LL, 9007199254740993LL, -9007199254740991LL,
          -9007199254740992LL, -9007199254740993LL, 999999999999999999LL, 1000000000000000000LL, 1000000000000000001LL,
          1234567890123456789LL, -1234567890123456789LL, LLONG_MAX - 1, LLONG_MAX, LLONG_MIN + 1, LLONG_MIN}) {
        EXPECT_EQ(number, member(std::to_string(number)));
        EXPECT_EQ(number, element(std::to_string(number)));
    }
}

TEST(JsonInt64Test, EveryNumberOfDigitsIsExact) {
    std::string digits;
    for (const char digit : std::string("1234567890123456789")) {
        digits += digit;
        EXPECT_EQ(std::stoll(digits), member(digits));
        EXPECT_EQ(-std::stoll(digits), element("-" + digits));
    }
}

TEST(JsonInt64Test, RandomIntegersAreExact) {
    std::mt19937_64 random = test::repeatableRandom();
    for (int i = 0; i < 2000; ++i) {
        const auto number = static_cast<long long>(random());
        ASSERT_EQ(number, member(std::to_string(number)));
    }
}

TEST(JsonInt64Test, IntegersOutsideBecomeTheNearestLimit) {
    for (const char* literal : {"9223372036854775808", "9999999999999999999", "10000000000000000000",
                                "123456789012345678901234567890", "1e300", "1e19"}) {
        EXPECT_EQ(LLONG_MAX, member(literal)) << literal;
        EXPECT_EQ(LLONG_MIN, member(std::string("-") + literal + (literal[0] == '9' ? "9" : ""))) << literal;
    }
    EXPECT_EQ(LLONG_MIN, element("-9223372036854775809"));
}

TEST(JsonInt64Test, FractionsAreTruncatedTowardZero) {
    EXPECT_EQ(1, member("1.9"));
    EXPECT_EQ(-1, member("-1.9"));
    EXPECT_EQ(0, element("0.999"));
    EXPECT_EQ(0, element("1e-5"));
}

TEST(JsonInt64Test, ExponentsCount) {
    EXPECT_EQ(1500, member("1.5e3"));
    EXPECT_EQ(1000000000000000000, element("1E18"));
    EXPECT_EQ(9007199254740992, member("9007199254740992e0"));
}

TEST(JsonInt64Test, WhatIsNoNumberIsZero) {
    for (const char* literal : {R"("9007199254740993")", "true", "null", "{}", "[7]"}) {
        EXPECT_EQ(0, member(literal)) << literal;
        EXPECT_EQ(0, element(literal)) << literal;
    }
}

TEST(JsonInt64Test, WhatIsMissingIsZero) {
    const JsonDocument object = parseJson(R"({"id":7})");
    const JsonDocument array = parseJson("[7]");
    EXPECT_EQ(0, json_object_get_int64(objectOf(object), "other"));
    EXPECT_EQ(0, json_object_get_int64(objectOf(object), nullptr));
    EXPECT_EQ(0, json_object_get_int64(nullptr, "id"));
    EXPECT_EQ(0, json_array_get_int64(arrayOf(array), 1));
    EXPECT_EQ(0, json_array_get_int64(nullptr, 0));
}

TEST(JsonInt64Test, TheDoubleIsTheNearestOne) {
    for (const char* literal : {"9007199254740993", "9223372036854775807", "-9223372036854775808",
                                "1234567890123456789", "999999999999999999", "36028797018963969"}) {
        const JsonDocument document = parseJson(std::string(R"({"id":)") + literal + "}");
        EXPECT_EQ(std::strtod(literal, nullptr), json_object_get_number(objectOf(document), "id")) << literal;
    }
}

TEST(JsonInt64Test, TextsParsedWithCommentsAreExactToo) {
    const JsonDocument document(json_parse_string_with_comments("{/* id */\"id\":9007199254740993 // end\n}"));
    EXPECT_EQ(9007199254740993, json_object_get_int64(objectOf(document), "id"));
}

TEST(JsonInt64Test, ManyDocumentsLiveAtOnceAndAreFreedInAnyOrder) {
    constexpr long long kBase = 9007199254740993;
    std::vector<std::pair<long long, JsonDocument>> documents;
    for (long long i = 0; i < 3000; ++i)
        documents.emplace_back(kBase + 10 * i, idsFrom(kBase + 10 * i));
    std::shuffle(documents.begin(), documents.end(), test::repeatableRandom());
    while (!documents.empty()) {
        for (const auto& [first, document] : documents)
            ASSERT_TRUE(holdsIdsFrom(document, first));
        documents.resize(documents.size() - std::min<std::size_t>(documents.size(), 300));
    }
}

TEST(JsonInt64Test, NewDocumentsInTheMemoryOfOldOnesAreExact) {
    constexpr long long kBase = 9007199254740993;
    std::vector<JsonDocument> documents(100);
    std::mt19937_64 random = test::repeatableRandom();
    std::vector<long long> firsts(documents.size());
    for (long long i = 0; i < 5000; ++i) {
        const auto slot = static_cast<std::size_t>(random() % documents.size());
        if (documents[slot] != nullptr) {
            ASSERT_TRUE(holdsIdsFrom(documents[slot], firsts[slot]));
        }
        firsts[slot] = i % 2 == 0 ? kBase + i : i;
        documents[slot] = idsFrom(firsts[slot]);
    }
}

TEST(JsonInt64Test, ACopyIsExactAndOutlivesTheOriginal) {
    JsonDocument original = parseJson(R"({"a":[1,{"id":9007199254740993}],"min":-9223372036854775808})");
    const JsonDocument copy(json_value_deep_copy(original.get()));
    original.reset();
    const JSON_Object* inner = json_array_get_object(json_object_get_array(objectOf(copy), "a"), 1);
    EXPECT_EQ(9007199254740993, json_object_get_int64(inner, "id"));
    EXPECT_EQ(LLONG_MIN, json_object_get_int64(objectOf(copy), "min"));
}

TEST(JsonInt64Test, ACopyOfACopyIsExact) {
    const JsonDocument original = parseJson("[9007199254740993]");
    const JsonDocument copy(json_value_deep_copy(original.get()));
    const JsonDocument second(json_value_deep_copy(copy.get()));
    EXPECT_EQ(9007199254740993, json_array_get_int64(arrayOf(second), 0));
}

TEST(JsonInt64Test, AMovedSubtreeStaysExact) {
    const JsonDocument source = parseJson(R"({"id":9007199254740993})");
    const JsonDocument target = parseJson("{}");
    json_object_set_value(objectOf(target), "copy", json_value_deep_copy(source.get()));
    EXPECT_EQ(9007199254740993, json_object_get_int64(json_object_get_object(objectOf(target), "copy"), "id"));
}

TEST(JsonInt64Test, ANumberSetByTheHostReplacesTheExactValue) {
    const JsonDocument document = parseJson(R"({"id":9007199254740993,"ids":[9007199254740993]})");
    json_object_set_number(objectOf(document), "id", 5);
    JSON_Array* ids = json_object_get_array(objectOf(document), "ids");
    json_array_replace_number(ids, 0, 6);
    json_array_append_number(ids, 7);
    EXPECT_EQ(5, json_object_get_int64(objectOf(document), "id"));
    EXPECT_EQ(6, json_array_get_int64(ids, 0));
    EXPECT_EQ(7, json_array_get_int64(ids, 1));
}

TEST(JsonInt64Test, ANumberOfTheHostIsTruncatedTowardZero) {
    const JsonDocument document(json_value_init_array());
    for (const double number : {1.9, -1.9, 9007199254740992.0, 1e300, -1e300})
        json_array_append_number(arrayOf(document), number);
    const std::vector<long long> expected = {1, -1, 9007199254740992, LLONG_MAX, LLONG_MIN};
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(expected[i], json_array_get_int64(arrayOf(document), i));
}

TEST(JsonInt64Test, ANumberSetAfterARemovalHasItsOwnValue) {
    const JsonDocument document = parseJson(R"({"a":9007199254740993,"b":9007199254740995})");
    for (int i = 0; i < 100; ++i) {
        json_object_remove(objectOf(document), "a");
        json_object_set_number(objectOf(document), "a", i);
        ASSERT_EQ(i, json_object_get_int64(objectOf(document), "a"));
    }
    EXPECT_EQ(9007199254740995, json_object_get_int64(objectOf(document), "b"));
}

TEST(JsonInt64Test, ARefusedTextLeavesNothingToTheNextNumber) {
    for (const char* text :
         {"[9007199254740993", R"({"a":9007199254740993)", "[9007199254740993,]", "9007199254740993x",
          "[09007199254740993]", "[-09007199254740993]", "[9007199254740993 9]", R"({"a":1,"a":9007199254740993})"}) {
        const JsonDocument refused = parseJson(text);
        const JsonDocument array(json_value_init_array());
        json_array_append_number(arrayOf(array), 5);
        EXPECT_EQ(5, json_array_get_int64(arrayOf(array), 0)) << text;
    }
}

}  // namespace
