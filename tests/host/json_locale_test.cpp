// A host may have set a locale whose decimal point is a comma.
#include <clocale>
#include <cstdlib>
#include <string>

#include "tests/host/json_document.h"
#include "tests/support/temp_dir.h"

namespace {

using test::arrayOf;
using test::compactText;
using test::parseJson;
using tools::JsonDocument;

class CommaLocaleTest : public testing::Test {
protected:
    void SetUp() override {
        if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) useOwnLocale();
        if (std::localeconv()->decimal_point != std::string(",")) GTEST_SKIP() << "no locale with a decimal comma";
    }
    void TearDown() override {
        (void)std::setlocale(LC_ALL, "C");
        unsetenv("LOCPATH");
    }

private:
    // The machine has not installed the locale; its definition may be there.
    void useOwnLocale() {
        const std::string command = "localedef -i de_DE -f UTF-8 " + dir_.at("de_DE.UTF-8") + " >/dev/null 2>&1";
        if (std::system(command.c_str()) != 0) return;  // NOLINT(cert-env33-c): a fixed command
        setenv("LOCPATH", dir_.path().c_str(), 1);      // NOLINT(concurrency-mt-unsafe)
        (void)std::setlocale(LC_ALL, "de_DE.UTF-8");
    }

    test::TempDir dir_;
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
