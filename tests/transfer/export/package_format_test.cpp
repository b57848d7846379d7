// The JSON of a backup package.
#include <climits>

#include "tests/support/comma_locale.h"
#include "tests/transfer/export/account_fixture.h"

namespace {

using imsdk::st_dbMessageBean;

class PackageFormat : public test::AccountTest {
protected:
    std::string json() { return test::jsonText(transfer.makeJson(2, &message)); }

    /// The JSON text of one member of the message's object.
    std::string member(const char* key) {
        const tools::JsonDocument document(transfer.makeJson(2, &message));
        const JSON_Value* value = json_object_get_value(json_value_get_object(document.get()), key);
        char* text = json_serialize_to_string(value);
        std::string copy = text != nullptr ? text : "missing";
        json_free_serialized_string(text);
        return copy;
    }

    st_dbMessageBean message = test::messageOn(2019, 3, 7);
};

TEST_F(PackageFormat, OfAMessageHasItsKeysInOrderAndEachFieldUnderItsKey) {
    message = test::fullMessage();
    EXPECT_EQ(R"({"sendUserID":2,"receTargetID":1,"sendTime":6,"message":"body","messageType":3,"messageID":4,)"
              R"("format":"format","lastMessageID":5,"msgProperties":"properties","activeType":15,"relatedMsgID":16,)"
              R"("securityLevel":20,"sourceID":"source","senderSessionID":9,"#limitRange":[13,14],)"
              R"("#relatedUsers":[18,19]})",
              json());
}

TEST_F(PackageFormat, DoesNotCarryTheFieldsThatStayOnTheDevice) {
    const std::string before = json();
    message.burnAfterReading = message.status = message.year_ = message.mon = message.day_ = 9;
    message.localID = 9;
    message.unReadState = message.extraText = "9";
    message.extraValue = message.extraValue2 = 9;
    EXPECT_EQ(before, json());
}

TEST_F(PackageFormat, OfEmptyListsIsEmptyArrays) {
    EXPECT_EQ("[]", member("#limitRange"));
    EXPECT_EQ("[]", member("#relatedUsers"));
}

TEST_F(PackageFormat, SplitsListsAtSemicolonsOnly) {
    message.relatedUsers = "5;7;9";
    EXPECT_EQ("[5,7,9]", member("#relatedUsers"));
    message.relatedUsers = ";5;;-7;";
    EXPECT_EQ("[5,-7]", member("#relatedUsers"));
    message.relatedUsers = "5,7:9";
    EXPECT_EQ("[5]", member("#relatedUsers"));
}

TEST_F(PackageFormat, WritesIdsAboveTwoToThe53rdAsTheNearestDouble) {
    message.msgID = 9007199254740993;
    EXPECT_EQ("9007199254740992", member("messageID"));
    message.msgID = 9007199254740995;
    EXPECT_EQ("9007199254740996", member("messageID"));
    message.targetID = LLONG_MAX;
    EXPECT_EQ("9223372036854775808", member("senderSessionID"));
    message.limitRange = "9007199254740993";
    EXPECT_EQ("[9007199254740992]", member("#limitRange"));
}

TEST_F(PackageFormat, WritesNumbersSigned) {
    message.msgID = LLONG_MIN;
    message.fromeUserID = -1;
    message.msgType = INT_MIN;
    message.activeType = -2;
    EXPECT_EQ("-9223372036854775808", member("messageID"));
    EXPECT_EQ("-1", member("sendUserID"));
    EXPECT_EQ("-2147483648", member("messageType"));
    EXPECT_EQ("-2", member("activeType"));
}

TEST_F(PackageFormat, WritesWholeNumbersWithoutExponentAndFraction) {
    message.time_ = 1551916800000;
    EXPECT_EQ("1551916800000", member("sendTime"));
    message.time_ = 1000000000000000000;
    EXPECT_EQ("1000000000000000000", member("sendTime"));
}

TEST_F(PackageFormat, EscapesWhatJsonWantsEscaped) {
    message.body = "a/b \"q\" \\ \n\t\x01";
    EXPECT_EQ(R"("a\/b \"q\" \\ \n\t\u0001")", member("message"));
}

TEST_F(PackageFormat, KeepsEveryScriptAsItIs) {
    message.body = "\xC3\xA9 \xE4\xBD\xA0\xE5\xA5\xBD \xD8\xB3 \xF0\x9F\x98\x80";
    EXPECT_EQ("\"" + message.body + "\"", member("message"));
}

TEST_F(PackageFormat, ReplacesIllFormedBytesAndKeepsTheRest) {
    message.body = "before \xFF after \xC3";
    message.sourceID = "\xED\xA0\x80";  // half of a surrogate pair
    EXPECT_EQ("\"before \xEF\xBF\xBD after \xEF\xBF\xBD\"", member("message"));
    EXPECT_EQ(std::string::npos, member("sourceID").find('\xED'));
    EXPECT_NE("missing", member("sourceID"));
}

TEST_F(PackageFormat, WritesTextsUpToTheirFirstNul) {
    message.body = std::string("a\0b", 3);
    EXPECT_EQ("\"a\"", member("message"));
}

TEST_F(PackageFormat, OfModeZeroIsAFileHead) {
    EXPECT_EQ(R"({"version":"1.0","msgs":[]})", test::jsonText(transfer.makeJson(0, nullptr)));
    transfer.packageVersion = "";
    EXPECT_EQ(R"({"version":"","msgs":[]})", test::jsonText(transfer.makeJson(0, nullptr)));
}

TEST_F(PackageFormat, OfModeOneIsAnEmptyMessageList) {
    EXPECT_EQ(R"({"msgs":[]})", test::jsonText(transfer.makeJson(1, nullptr)));
}

TEST_F(PackageFormat, OfAnyOtherModeIsNull) {
    for (const int mode : {3, -1, INT_MAX})
        EXPECT_EQ(nullptr, transfer.makeJson(mode, &message)) << mode;
}

TEST_F(PackageFormat, OfNoMessageIsNull) {
    EXPECT_EQ(nullptr, transfer.makeJson(2, nullptr));
}

// --- The same from both writers: message files are written without a JSON tree

class BothWriters : public PackageFormat {
protected:
    /// The message as it stands in a message file.
    std::string written() {
        std::filesystem::remove_all(dir.at("backup"));
        transfer.dayMsgMap = {{"2019:3:7", {message}}};
        EXPECT_EQ(0U, transfer.wtMsgToFile());
        const std::string before = R"({"version":"1.0","msgs":[{"msgs":[)";
        const std::string after = R"(],"date":{"year":2019,"month":3,"day":7}}]})";
        const std::string file = messageFile(0);
        EXPECT_EQ(before, file.substr(0, before.size()));
        EXPECT_EQ(after, file.substr(file.size() - after.size()));
        return file.substr(before.size(), file.size() - before.size() - after.size());
    }
};

TEST_F(BothWriters, WriteTheSameNumbers) {
    const long long numbers[] = {0,         1,         -1,      9007199254740991,  9007199254740992,  9007199254740993,
                                 LLONG_MAX, LLONG_MIN, INT_MAX, -9007199254740993, 100000000000000000};
    for (const long long number : numbers) {
        message.msgID = message.time_ = number;
        message.msgType = static_cast<int>(number);
        message.relatedUsers = std::to_string(number) + ";1";
        EXPECT_EQ(json(), written());
    }
}

TEST_F(BothWriters, WriteTheSameTexts) {
    const std::string texts[] = {
        "",
        "a/b \"q\" \\ \b\f\n\r\t\x01\x1F\x7F",
        "\xC3\xA9 \xE4\xBD\xA0\xE5\xA5\xBD \xF0\x9F\x98\x80 \xEF\xBF\xBF",
        std::string("cut\0here", 8),
        "\xFF",
        "\x80 alone",
        "\xC0\xAF overlong \xE0\x80\x80 \xF0\x80\x80\x80",
        "\xED\xA0\x80 surrogate \xED\xBF\xBF",
        "\xF4\x8F\xBF\xBF last \xF4\x90\x80\x80 beyond \xF5\x80\x80\x80",
        "cut short \xE4\xBD",
        "cut short \xF0\x9F\x98",
    };
    for (const std::string& text : texts) {
        message.body = message.sourceID = message.msgProperties = text;
        EXPECT_EQ(json(), written());
    }
}

TEST_F(BothWriters, WriteTheSameForEveryByteAtEveryPlaceOfEight) {
    message.body.clear();
    for (int byte = 1; byte < 256; ++byte) {
        for (std::size_t place = 0; place < 8; ++place) {
            std::string eight(8, 'x');
            eight[place] = static_cast<char>(byte);
            message.body += eight;
        }
    }
    EXPECT_EQ(json(), written());
}

TEST_F(BothWriters, WriteTheSameLists) {
    for (const char* list : {"", ";", "5", "5;7;9", "5;;7", "x;5", " 5 ; 7", "5,7", "99999999999999999999;-1"}) {
        message.limitRange = message.relatedUsers = list;
        EXPECT_EQ(json(), written()) << list;
    }
}

TEST_F(BothWriters, WriteTheSameVersion) {
    for (const char* version : {"", "1.0/\"x\"", "\xFF"}) {
        transfer.packageVersion = version;
        const std::string head = test::jsonText(transfer.makeJson(0, nullptr));
        std::filesystem::remove_all(dir.at("backup"));
        transfer.dayMsgMap = {{"2019:3:7", {}}};
        EXPECT_EQ(0U, transfer.wtMsgToFile());
        const std::string common = head.substr(0, head.size() - 2);
        EXPECT_EQ(common, messageFile(0).substr(0, common.size()));
    }
}

TEST_F(PackageFormat, WithoutMemoryIsNullOrIncompleteButNeverBroken) {
    static long long left = 0;
    message.relatedUsers = "5;7";
    const std::string complete = json();
    std::string text;
    for (long long blocks = 0; text != complete; ++blocks) {
        ASSERT_LT(blocks, 1000);
        left = blocks;
        json_set_allocation_functions([](size_t size) { return left-- > 0 ? std::malloc(size) : nullptr; }, std::free);
        const tools::JsonDocument document(transfer.makeJson(2, &message));
        json_set_allocation_functions(std::malloc, std::free);
        char* written = json_serialize_to_string(document.get());
        text = written != nullptr ? written : "";
        json_free_serialized_string(written);
        EXPECT_EQ(document == nullptr, text.empty());
    }
}

TEST_F(BothWriters, WriteTheSameUnderALocaleWithADecimalComma) {
    message.time_ = 1551916800000;
    message.limitRange = "1000000;-5";
    const std::string plain = json();
    const test::CommaLocale locale;
    if (!test::CommaLocale::isSet()) GTEST_SKIP() << "no locale with a decimal comma can be made here";
    EXPECT_EQ(plain, json());
    EXPECT_EQ(plain, written());
}

}  // namespace
