// Reading recontact.mg.
#include <sys/stat.h>

#include <filesystem>
#include <limits>

#include "tests/transfer/package_import/import_fixture.h"

namespace fs = std::filesystem;

namespace test {
namespace {

using imsdk::st_dbReContactBean;

constexpr long long kMost = std::numeric_limits<long long>::max();
constexpr long long kLeast = std::numeric_limits<long long>::min();
constexpr int kMostInt = std::numeric_limits<int>::max();
constexpr int kLeastInt = std::numeric_limits<int>::min();

class RecentContactFile : public ImportFixture {
protected:
    unsigned read() {
        std::string path = dir_.at(messagesFolder_ + "recontact.mg");
        return transfer_.rdRecontactFromFile(path);
    }
    unsigned readText(const std::string& bytes) {
        writeContacts(bytes);
        return read();
    }
    // The contact of an object that has this one key.
    st_dbReContactBean withKey(const std::string& key, const std::string& json) {
        EXPECT_EQ(0U, readText(contactsJson(R"({")" + key + R"(":)" + json + "}")));
        EXPECT_EQ(1U, transfer_.reContacts.size());
        return transfer_.reContacts.empty() ? st_dbReContactBean() : transfer_.reContacts.front();
    }
    void keepEarlier() { transfer_.reContacts = {contactOf(9, 1, 0)}; }
    std::string targets() const {
        return listed(transfer_.reContacts, " ", [](const auto& one) { return std::to_string(one.targetID); });
    }
};

TEST_F(RecentContactFile, LeavesTheContactsAloneWhenItIsMissing) {
    keepEarlier();
    EXPECT_EQ(kMissing, read());
    EXPECT_EQ("9", targets());
}

TEST_F(RecentContactFile, EmptiesTheContactsOnceItIsThere) {
    keepEarlier();
    EXPECT_EQ(kNotJson, readText("not JSON"));
    EXPECT_EQ("", targets());
}

TEST_F(RecentContactFile, EmptiesTheContactsAlsoForAnotherVersion) {
    keepEarlier();
    EXPECT_EQ(kWrongVersion, readText(R"({"version":"2.0","recontact":[{"targetID":5}]})"));
    EXPECT_EQ("", targets());
}

TEST_F(RecentContactFile, NeedsAVersion) {
    EXPECT_EQ(kWrongVersion, readText(R"({"recontact":[{"targetID":5}]})"));
    transfer_.packageVersion.clear();
    EXPECT_EQ(kWrongVersion, readText(R"({"recontact":[{"targetID":5}]})"));
    EXPECT_EQ("", targets());
}

TEST_F(RecentContactFile, ComparesVersionsByteForByte) {
    for (const char* version : {R"("1.0 ")", R"("1")", R"("1.00")", "1.0", "null", R"(["1.0"])"})
        EXPECT_EQ(kWrongVersion, readText(std::string(R"({"recontact":[],"version":)") + version + "}")) << version;
}

TEST_F(RecentContactFile, IsOfAnotherVersionWhenItIsJsonButNoObject) {
    for (const char* json : {"[]", "7", R"("1.0")", "null"})
        EXPECT_EQ(kWrongVersion, readText(json)) << json;
}

TEST_F(RecentContactFile, IsNotJsonWhenItCannotBeRead) {
    fs::create_symlink(dir_.write("elsewhere", contactsJson("")), dir_.at(messagesFolder_ + "recontact.mg"));
    EXPECT_EQ(kNotJson, read());
}

TEST_F(RecentContactFile, MayBeADirectory) {
    dir_.makeDir(messagesFolder_ + "recontact.mg");
    EXPECT_EQ(kNotJson, read());
}

TEST_F(RecentContactFile, MayBeAFifoWithoutBlocking) {
    ASSERT_EQ(0, mkfifo(dir_.at(messagesFolder_ + "recontact.mg").c_str(), 0600));
    EXPECT_EQ(kNotJson, read());
}

TEST_F(RecentContactFile, IsNotJsonWhereverItIsCut) {
    const std::string whole = contactsJson(R"({"targetID":5,"name":"n"})");
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_EQ(kNotJson, readText(whole.substr(0, length))) << length;
}

TEST_F(RecentContactFile, IsNotJsonAt3000Levels) {
    EXPECT_EQ(kNotJson, readText(std::string(3000, '[') + std::string(3000, ']')));
}

TEST_F(RecentContactFile, HoldsNoContactsWithoutItsList) {
    for (const char* json : {R"({"version":"1.0"})", R"({"version":"1.0","recontact":{}})",
                             R"({"version":"1.0","recontact":[]})", R"({"version":"1.0","recontact":"x"})"}) {
        keepEarlier();
        EXPECT_EQ(0U, readText(json)) << json;
        EXPECT_EQ("", targets()) << json;
    }
}

TEST_F(RecentContactFile, IsReadInItsOrderWithDuplicates) {
    EXPECT_EQ(0U, readText(contactsJson(R"({"targetID":7},{"targetID":5},{"targetID":7})")));
    EXPECT_EQ("7 5 7", targets());
}

TEST_F(RecentContactFile, ReplacesWhatWasReadBefore) {
    EXPECT_EQ(0U, readText(contactsJson(R"({"targetID":7})")));
    EXPECT_EQ(0U, readText(contactsJson(R"({"targetID":5})")));
    EXPECT_EQ("5", targets());
}

TEST_F(RecentContactFile, PassesOverElementsThatAreNoObjects) {
    EXPECT_EQ(0U, readText(contactsJson(R"(null,5,"x",[],{"targetID":5})")));
    EXPECT_EQ("5", targets());
}

TEST_F(RecentContactFile, FillsAContactKeyByKey) {
    EXPECT_EQ(0U, readText(contactsJson(
                      R"({"targetID":5,"lastMsgid":2,"time":3,"type":-4,"top":4,"wherefrom":"where","msgType":300,)"
                      R"("activeType":6,"lastMsg":"last/","msgProp":"prop","name":"name","securityLevel":8})")));
    st_dbReContactBean expected = fullContact();
    expected.sendUserID = 0;  // no package carries it
    ASSERT_EQ(1U, transfer_.reContacts.size());
    EXPECT_EQ(describe(expected), describe(transfer_.reContacts[0]));
}

TEST_F(RecentContactFile, StartsAContactFromZerosAndEmptyTexts) {
    EXPECT_EQ(describe(st_dbReContactBean()), describe(withKey("other", "1")));
}

TEST_F(RecentContactFile, TakesNoSender) {
    EXPECT_EQ(0, withKey("sendUserID", "8").sendUserID);
}

TEST_F(RecentContactFile, TakesWherefromInLowerCaseOnly) {
    EXPECT_EQ("", withKey("whereFrom", R"("w")").wherefrom);
}

struct NumberCase {
    const char* json;
    long long expected;
};

TEST_F(RecentContactFile, TurnsATopOf1IntoThePin) {
    constexpr NumberCase cases[] = {{"0", 0}, {"1", 4},   {"2", 2},   {"3", 3},   {"4", 4},
                                    {"5", 5}, {"-1", -1}, {"1.9", 4}, {"257", 4}, {"0.5", 0}};
    for (const NumberCase& value : cases)
        EXPECT_EQ(value.expected, static_cast<int>(withKey("top", value.json).top)) << value.json;
}

TEST_F(RecentContactFile, CutsTypesToTheirLow8Bits) {
    constexpr NumberCase cases[] = {{"127", 127}, {"128", -128}, {"255", -1},   {"300", 44},  {"-129", 127},
                                    {"1e-5", 0},  {"7.9", 7},    {"1e300", -1}, {"-1e300", 0}};
    for (const NumberCase& value : cases)
        EXPECT_EQ(value.expected, static_cast<int>(withKey("type", value.json).type)) << value.json;
}

TEST_F(RecentContactFile, KeepsIdsExactlyAndBoundsThem) {
    constexpr NumberCase cases[] = {{"1234567890123456789", 1234567890123456789},
                                    {"9223372036854775807", kMost},
                                    {"-9223372036854775808", kLeast},
                                    {"1e300", kMost},
                                    {"-1e300", kLeast},
                                    {"1e-5", 0},
                                    {"2147483648", 2147483648}};
    for (const NumberCase& value : cases) {
        EXPECT_EQ(value.expected, withKey("targetID", value.json).targetID) << value.json;
        EXPECT_EQ(value.expected, withKey("lastMsgid", value.json).lastMsgid) << value.json;
        EXPECT_EQ(value.expected, withKey("time", value.json).time) << value.json;
    }
}

TEST_F(RecentContactFile, BoundsNumbersOutsideTheirRange) {
    constexpr NumberCase cases[] = {{"1e300", kMostInt},      {"-1e300", kLeastInt}, {"1e-5", 0},
                                    {"2147483648", kMostInt}, {"-3.9", -3},          {"300", 300}};
    for (const NumberCase& value : cases) {
        EXPECT_EQ(value.expected, withKey("msgType", value.json).msgType) << value.json;
        EXPECT_EQ(value.expected, withKey("activeType", value.json).activeType) << value.json;
        EXPECT_EQ(value.expected, withKey("securityLevel", value.json).securityLevel) << value.json;
    }
}

TEST_F(RecentContactFile, HasDefaultsForValuesOfAnotherType) {
    const std::string defaults = describe(st_dbReContactBean());
    for (const char* key : {"targetID", "lastMsgid", "time", "type", "top", "msgType", "activeType", "securityLevel"}) {
        for (const char* json : {"null", "true", R"("5")", "[5]", "{}"})
            EXPECT_EQ(defaults, describe(withKey(key, json))) << key << " " << json;
    }
    for (const char* key : {"wherefrom", "lastMsg", "msgProp", "name"}) {
        for (const char* json : {"null", "true", "5", R"(["x"])", "{}"})
            EXPECT_EQ(defaults, describe(withKey(key, json))) << key << " " << json;
    }
}

}  // namespace
}  // namespace test
