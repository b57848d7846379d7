// Packages that were cut, changed or filled with values of other types, imported as a whole: what is damaged stays out,
// and the harmless rest of the package arrives.
#include <string>
#include <vector>

#include "tests/hostile/hostile_package.h"
#include "tests/hostile/hostile_values.h"

namespace test {
namespace {

class DamagedPackage : public HostilePackage {
protected:
    const std::string messages_ = fileJson(
        dayJson(messageJson(6, 1, R"(,"messageType":6,"message":"{\"mediaUrl\":\"a/x\",\"fileName\":\"f\"}")")));
    const std::string contacts_ = contactsJson(R"({"targetID":6,"name":"six","time":1})");

    // Reads and writes the package with these two files. Only a version that is another one may stop it.
    void import(const std::string& messages, const std::string& contacts) {
        writeFile(0, messages);
        writeContacts(contacts);
        transfer_.msgMap.clear();
        transfer_.report = {};
        const unsigned code = transfer_.rdMsgFromFile();
        if (code == 0xff000024U) return;
        EXPECT_EQ(0U, code);
        EXPECT_EQ("1", collectedIds(5)) << "the harmless file did not arrive";
    }

    void expectNothingHarmed(const std::string& before) const {
        EXPECT_EQ(before, surroundings());
        expectNothingPrivateInTheAccount();
    }
};

TEST_F(DamagedPackage, ThatIsCutAtAnyByteBringsTheRest) {
    writeFile(1, smallFile(5, 1));
    writeContacts(contacts_);
    writeFile(0, messages_);
    const std::string before = surroundings();
    for (std::size_t length = 0; length < messages_.size(); ++length) {
        ASSERT_NO_FATAL_FAILURE(import(messages_.substr(0, length), contacts_)) << length;
        ASSERT_EQ("none", collectedIds(6)) << length;
    }
    for (std::size_t length = 0; length < contacts_.size(); ++length) {
        ASSERT_NO_FATAL_FAILURE(import(messages_, contacts_.substr(0, length))) << length;
        ASSERT_TRUE(transfer_.reContacts.empty()) << length;
    }
    import(messages_, contacts_);
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ("1", idsIn("im_msg_6"));
    expectNothingHarmed(before);
}

TEST_F(DamagedPackage, WithAnyBitFlippedBringsTheRest) {
    writeFile(1, smallFile(5, 1));
    writeContacts(contacts_);
    writeFile(0, messages_);
    const std::string before = surroundings();
    for (std::size_t bit = 0; bit < 8 * messages_.size(); ++bit) {
        std::string flipped = messages_;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
        ASSERT_NO_FATAL_FAILURE(import(flipped, contacts_)) << bit;
    }
    for (std::size_t bit = 0; bit < 8 * contacts_.size(); ++bit) {
        std::string flipped = contacts_;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
        ASSERT_NO_FATAL_FAILURE(import(messages_, flipped)) << bit;
    }
    import(messages_, contacts_);
    expectNothingHarmed(before);
}

class ValueInAPackage : public HostilePackage, public testing::WithParamInterface<HostileValue> {
protected:
    // Two objects: one with the value under `hostile` and zeros elsewhere, one without that key.
    static std::string withAndWithout(const std::vector<const char*>& keys, const std::string& hostile) {
        std::string with;
        std::string without;
        for (const std::string key : keys) {
            const std::string quotedKey = "\"" + key + "\":";
            with += (with.empty() ? "" : ",") + quotedKey + (key == hostile ? GetParam().json : "0");
            if (key != hostile) without += (without.empty() ? "" : ",") + quotedKey + "0";
        }
        return "{" + with + "},{" + without + "}";
    }
};

TEST_P(ValueInAPackage, UnderAnyKeySpoilsNothingElse) {
    const std::vector<const char*> messageKeys = {"sendUserID",    "receTargetID", "sendTime",     "message",
                                                  "messageType",   "messageID",    "format",       "lastMessageID",
                                                  "msgProperties", "activeType",   "relatedMsgID", "securityLevel",
                                                  "sourceID",      "#limitRange",  "#relatedUsers"};
    harmlessFile_ = 0;
    for (const char* key : messageKeys)
        writeFile(harmlessFile_++, fileJson(dayJson(withAndWithout(messageKeys, key))));
    for (const char* key : {"msgs", "date", "#limitRange", "#relatedUsers"})
        writeFile(harmlessFile_++, fileJson(withAndWithout({"msgs", "date", "#limitRange", "#relatedUsers"}, key)));
    for (const std::string key : {"year", "month", "day"})
        writeFile(harmlessFile_++, fileJson(R"({"msgs":[{}],"date":{")" + key + "\":" + GetParam().json + "}}"));
    writeFile(harmlessFile_++, R"({"version":"1.0","msgs":)" + GetParam().json + "}");
    writeFile(harmlessFile_++, GetParam().json == "{}" || GetParam().label == std::string("ManyKeys")
                                   ? "[]"  // an object without a version is another version, which ends the import
                                   : GetParam().json);
    std::string contacts;
    const std::vector<const char*> contactKeys = {"targetID", "lastMsgid", "time",    "type",
                                                  "top",      "wherefrom", "msgType", "activeType",
                                                  "lastMsg",  "msgProp",   "name",    "securityLevel"};
    for (const char* key : contactKeys)
        contacts += (contacts.empty() ? "" : ",") + withAndWithout(contactKeys, key);
    writeContacts(contactsJson(contacts));
    importWholePackage();
}

INSTANTIATE_TEST_SUITE_P(Hostile, ValueInAPackage, testing::ValuesIn(hostileValues()),
                         [](const auto& parameter) { return std::string(parameter.param.label); });

}  // namespace
}  // namespace test
