// One message of a package: which key fills which field, and what other types and numbers become.
#include <limits>

#include "tests/support/json_text.h"
#include "tests/transfer/package_import/import_fixture.h"

namespace test {
namespace {

using imsdk::st_dbMessageBean;

constexpr long long kMost = std::numeric_limits<long long>::max();
constexpr long long kLeast = std::numeric_limits<long long>::min();
constexpr int kMostInt = std::numeric_limits<int>::max();
constexpr int kLeastInt = std::numeric_limits<int>::min();

struct IdKey {
    const char* key;
    long long st_dbMessageBean::*field;
};
constexpr IdKey kIdKeys[] = {
    {"sendUserID", &st_dbMessageBean::fromeUserID},  {"receTargetID", &st_dbMessageBean::toUserID},
    {"sendTime", &st_dbMessageBean::time_},          {"messageID", &st_dbMessageBean::msgID},
    {"lastMessageID", &st_dbMessageBean::lastMsgID}, {"relatedMsgID", &st_dbMessageBean::relatedMsgID},
    {"senderSessionID", &st_dbMessageBean::targetID}};

struct NumberKey {
    const char* key;
    int st_dbMessageBean::*field;
};
constexpr NumberKey kNumberKeys[] = {{"messageType", &st_dbMessageBean::msgType},
                                     {"activeType", &st_dbMessageBean::activeType}};
constexpr NumberKey kDateKeys[] = {
    {"year", &st_dbMessageBean::year_}, {"month", &st_dbMessageBean::mon}, {"day", &st_dbMessageBean::day_}};

struct TextKey {
    const char* key;
    std::string st_dbMessageBean::*field;
};
constexpr TextKey kTextKeys[] = {{"message", &st_dbMessageBean::body},
                                 {"format", &st_dbMessageBean::formate},
                                 {"msgProperties", &st_dbMessageBean::msgProperties},
                                 {"sourceID", &st_dbMessageBean::sourceID}};

st_dbMessageBean importedDefaults() {
    st_dbMessageBean record;
    record.status = 4;
    record.extraValue2 = -1;
    return record;
}

struct IdCase {
    const char* json;
    long long expected;
};

class MessageRecord : public ImportFixture {
protected:
    template <std::size_t Count>
    void expectUnderEachId(const IdCase (&cases)[Count]) {
        for (const IdKey& id : kIdKeys) {
            for (const IdCase& value : cases)
                EXPECT_EQ(value.expected, withKey(id.key, value.json).*id.field) << id.key << " " << value.json;
        }
    }
    // The record of a message that has this one key, under a day without date.
    st_dbMessageBean withKey(const std::string& key, const std::string& json) {
        return readOnly(fileJson(R"({"msgs":[{")" + key + R"(":)" + json + "}]}"));
    }
    int dateWith(const NumberKey& date, const std::string& json) {
        const std::string member = std::string(R"({")") + date.key + R"(":)" + json + "}";
        return readOnly(fileJson(R"({"msgs":[{}],"date":)" + member + "}")).*date.field;
    }
};

TEST_F(MessageRecord, StartsFromTheDefaultsOfAnImport) {
    const st_dbMessageBean record = readOnly(fileJson(R"({"msgs":[{}]})"));
    EXPECT_EQ(describe(importedDefaults()), describe(record));
}

TEST_F(MessageRecord, IsFilledKeyByKey) {
    const st_dbMessageBean record = readOnly(fileJson(
        dayJson(R"({"sendUserID":2,"receTargetID":1,"sendTime":6,"message":"body","messageType":3,"messageID":4,)"
                R"("format":"format","lastMessageID":5,"msgProperties":"properties","activeType":15,"relatedMsgID":16,)"
                R"("sourceID":"source","senderSessionID":9})")));
    st_dbMessageBean expected = fullMessage();
    expected.year_ = 2019;
    expected.mon = 3;
    expected.day_ = 7;
    // What no package carries, or has in another place.
    const st_dbMessageBean defaults = importedDefaults();
    expected.burnAfterReading = expected.securityLevel = 0;
    expected.status = defaults.status;
    expected.localID = defaults.localID;
    expected.limitRange = expected.relatedUsers = expected.unReadState = expected.extraText = "";
    expected.extraValue2 = defaults.extraValue2;
    EXPECT_EQ(describe(expected), describe(record));
}

TEST_F(MessageRecord, AlwaysHasStatus4) {
    EXPECT_EQ(4, withKey("status", "9").status);
}

TEST_F(MessageRecord, TakesNoSecurityLevelAlthoughPackagesHaveIt) {
    EXPECT_EQ(0, withKey("securityLevel", "3").securityLevel);
}

TEST_F(MessageRecord, TakesNoKeyOutsideTheFormat) {
    for (const char* key : {"burnAfterReading", "localID", "unReadState", "extraText", "extraValue", "extraValue2",
                            "body", "msgID", "toUserID", "year_", "limitRange", "time_"}) {
        EXPECT_EQ(describe(importedDefaults()), describe(withKey(key, "8"))) << key;
        EXPECT_EQ(describe(importedDefaults()), describe(withKey(key, R"("x")"))) << key;
    }
}

TEST_F(MessageRecord, TakesKeysWithTheirExactCaseOnly) {
    for (const char* key : {"messageid", "MessageID", "messageID ", "senduserid"})
        EXPECT_EQ(describe(importedDefaults()), describe(withKey(key, "8"))) << key;
}

TEST_F(MessageRecord, HasZeroForNumbersOfAnotherType) {
    for (const char* json : {"null", "true", R"("5")", "[5]", R"({"5":5})"}) {
        for (const IdKey& id : kIdKeys)
            EXPECT_EQ(describe(importedDefaults()), describe(withKey(id.key, json))) << id.key << " " << json;
        for (const NumberKey& number : kNumberKeys)
            EXPECT_EQ(describe(importedDefaults()), describe(withKey(number.key, json))) << number.key << " " << json;
        for (const NumberKey& date : kDateKeys)
            EXPECT_EQ(0, dateWith(date, json)) << date.key << " " << json;
    }
}

TEST_F(MessageRecord, HasNoTextForTextsOfAnotherType) {
    for (const char* json : {"null", "true", "5", "1e300", R"(["x"])", R"({"x":"x"})"}) {
        for (const TextKey& text : kTextKeys)
            EXPECT_EQ(describe(importedDefaults()), describe(withKey(text.key, json))) << text.key << " " << json;
    }
}

TEST_F(MessageRecord, HasNoDateForADateOfAnotherType) {
    for (const char* date : {"null", "20190307", R"("2019-03-07")", "[2019,3,7]", "{}"}) {
        const st_dbMessageBean record = readOnly(fileJson(std::string(R"({"msgs":[{}],"date":)") + date + "}"));
        EXPECT_EQ(describe(importedDefaults()), describe(record)) << date;
    }
}

TEST_F(MessageRecord, KeepsIdsOfUpTo19DigitsExactly) {
    constexpr IdCase cases[] = {{"9007199254740993", 9007199254740993},
                                {"1234567890123456789", 1234567890123456789},
                                {"9223372036854775807", kMost},
                                {"-9223372036854775808", kLeast},
                                {"2147483648", 2147483648},
                                {"-1", -1}};
    expectUnderEachId(cases);
}

TEST_F(MessageRecord, BoundsIdsOutsideTheirRange) {
    constexpr IdCase cases[] = {{"1e300", kMost},
                                {"-1e300", kLeast},
                                {"9223372036854775808", kMost},
                                {"-1e19", kLeast},
                                {"1e-5", 0},
                                {"-1e-5", 0},
                                {"2.9", 2},
                                {"-2.9", -2},
                                {"1e3", 1000},
                                {"2147483648.5", 2147483648}};
    expectUnderEachId(cases);
}

TEST_F(MessageRecord, BoundsNumbersOutsideTheirRange) {
    constexpr IdCase cases[] = {{"1e300", kMostInt},
                                {"-1e300", kLeastInt},
                                {"1e-5", 0},
                                {"-1e-5", 0},
                                {"2147483647", kMostInt},
                                {"2147483648", kMostInt},
                                {"-2147483648", kLeastInt},
                                {"-2147483649", kLeastInt},
                                {"3.9", 3},
                                {"-3.9", -3}};
    for (const NumberKey& number : kNumberKeys) {
        for (const IdCase& value : cases)
            EXPECT_EQ(value.expected, withKey(number.key, value.json).*number.field) << number.key << " " << value.json;
    }
}

TEST_F(MessageRecord, TakesTheLow32BitsOfA64BitDate) {
    constexpr IdCase cases[] = {{"2019.9", 2019},  {"1e-5", 0},   {"-7", -7},   {"2147483648", kLeastInt},
                                {"4294967298", 2}, {"1e300", -1}, {"-1e300", 0}};
    for (const NumberKey& date : kDateKeys) {
        for (const IdCase& value : cases)
            EXPECT_EQ(value.expected, dateWith(date, value.json)) << date.key << " " << value.json;
    }
}

TEST_F(MessageRecord, KeepsTextsByteForByte) {
    const std::string text = "\xE4\xBD\xA0\xE5\xA5\xBD \xF0\x9F\x98\x80 'q' \"d\" \\ / \n\t\x01";
    for (const TextKey& key : kTextKeys)
        EXPECT_EQ(text, withKey(key.key, quoted(text)).*key.field) << key.key;
}

TEST_F(MessageRecord, KeepsLongTexts) {
    const std::string text(1'000'000, 'x');
    EXPECT_EQ(text, withKey("message", quoted(text)).body);
}

TEST_F(MessageRecord, KeepsTextsUpToTheirFirstNul) {
    EXPECT_EQ("ab", withKey("message", R"("ab\u0000cd")").body);
}

TEST_F(MessageRecord, DecodesEscapedCharacters) {
    EXPECT_EQ("\xC3\xA9/\xF0\x9F\x98\x80", withKey("message", R"("\u00e9\/\ud83d\ude00")").body);
}

}  // namespace
}  // namespace test
