// A host may have set a locale whose decimal point is a comma.
#include "tests/host/json/json_document.h"
#include "tests/support/comma_locale.h"

namespace {

using test::arrayOf;
using test::compactText;
using test::parseJson;
using tools::JsonDocument;

class CommaLocaleTest : public testing::Test {
protected:
    void SetUp() override {
        if (!test::CommaLocale::isSet()) GTEST_SKIP() << "no locale with a decimal comma";
    }

private:
    test::CommaLocale locale_;
};

TEST_F(CommaLocaleTest, NumbersAreReadWithAPoint) {
    const JsonDocument document = parseJson("[1.5,-2.5e3,9007199254740993,7]");
    ASSERT_NE(nullptr, document);
    EXPECT_EQ(1.5, json_array_get_number(arrayOf(document), 0));
    EXPECT_EQ(-2500, json_array_get_number(arrayOf(document), 1));
    EXPECT_EQ(9007199254740993, json_array_get_int64(arrayOf(document), 2));
}

TEST_F(CommaLocaleTest, ACommaStillSeparatesElements) {
    const JsonDocument document = parseJson("[1,5]");
    EXPECT_EQ(2U, json_array_get_count(arrayOf(document)));
}

TEST_F(CommaLocaleTest, NumbersAreWrittenWithAPoint) {
    EXPECT_EQ("1.5", compactText(JsonDocument(json_value_init_number(1.5))));
    EXPECT_EQ("0.10000000000000001", compactText(JsonDocument(json_value_init_number(0.1))));
    EXPECT_EQ("1234567", compactText(JsonDocument(json_value_init_number(1234567))));
}

}  // namespace
