// The writer that builds no tree, held against the JSON tree of dbTrans::makeJson: same bytes.
#include "transfer/format/package_text.h"

#include <gtest/gtest.h>

#include <array>

#include "host/json/json_owner.h"
#include "tests/differential/json_generator.h"
#include "transfer/dbTrans.h"

namespace {

std::string byTree(imsdk::st_dbMessageBean message) {
    dbTrans transfer;
    const tools::JsonDocument document(transfer.makeJson(2, &message));
    char* text = json_serialize_to_string(document.get());
    std::string result = text;
    json_free_serialized_string(text);
    return result;
}

std::string byText(const imsdk::st_dbMessageBean& message) {
    tools::TextBuffer out;
    chattransfer::appendMessage(out, message);
    return std::string(out.text());
}

class Messages {
public:
    imsdk::st_dbMessageBean next() {
        imsdk::st_dbMessageBean message;
        chattransfer::forEachMessageKey(message,
                                        [this](const char*, chattransfer::KeyUse, auto& field) { fill(field); });
        chattransfer::forEachMessageList(message, [this](const char*, std::string& joined) { joined = list(); });
        return message;
    }

private:
    void fill(int& field) { field = static_cast<int>(generator_.random()()); }

    void fill(long long& field) {
        static constexpr std::array<long long, 8> odd = {
            INT64_MAX, INT64_MIN, 1LL << 53, -(1LL << 53), (1LL << 53) + 1, -((1LL << 53) + 1LL), 0, -1};
        const auto high = static_cast<long long>(generator_.random()()) - (1LL << 31);
        field = generator_.upTo(2) == 0 ? odd.at(static_cast<std::size_t>(generator_.upTo(8)))
                                        : high * 4294967296LL + generator_.upTo(1000);
    }

    void fill(std::string& field) {
        static constexpr std::array<const char*, 12> pieces = {"plain text of some length, more than eight",
                                                               "\"",
                                                               "\\",
                                                               "/",
                                                               "\n\r\t\b\f",
                                                               "\x01\x1F\x7F",
                                                               "\xE4\xBD\xA0\xE5\xA5\xBD",
                                                               "\xF0\x9F\x98\x80",
                                                               "\xFF",
                                                               "\xC3",
                                                               "\xED\xA0\x80",
                                                               "\xF0\x9F"};
        field.clear();
        for (int i = generator_.upTo(8); i > 0; --i)
            field += pieces.at(static_cast<std::size_t>(generator_.upTo(12)));
        if (generator_.upTo(20) == 0) field += std::string("\0after", 6);
    }

    std::string list() {
        static constexpr std::array<const char*, 7> pieces = {"1", "-22", "9223372036854775807", "", "x", "7_1", " 5"};
        std::string joined;
        for (int i = generator_.upTo(5); i > 0; --i) {
            joined += std::string(pieces.at(static_cast<std::size_t>(generator_.upTo(7)))) + (i > 1 ? ";" : "");
        }
        return joined;
    }

    test::JsonGenerator generator_{3};
};

}  // namespace

TEST(PackageText, WritesMessagesByteForByteLikeTheTree) {
    Messages messages;
    for (int i = 0; i < 20000; ++i) {
        const imsdk::st_dbMessageBean message = messages.next();
        ASSERT_EQ(byTree(message), byText(message));
    }
}

TEST(PackageText, WritesAFileLikeTheTreeOfItsParts) {
    Messages messages;
    const std::array<imsdk::st_dbMessageBean, 3> records = {messages.next(), messages.next(), messages.next()};
    chattransfer::MessageFileText file("1.\"0\xFF");
    file.begin();
    file.addDay({2019, 3, 7}, records.data(), records.data() + 2);
    file.addDay({-1, 0, 12}, records.data() + 2, records.data() + 3);
    const tools::JsonDocument document(json_parse_string(std::string(file.finish()).c_str()));
    ASSERT_NE(nullptr, document);
    char* text = json_serialize_to_string(document.get());
    EXPECT_EQ(file.finish().substr(0, std::string(text).size()), text);
    json_free_serialized_string(text);
}

TEST(PackageText, UsesItsBufferAgainWithoutATraceOfTheLastFile) {
    chattransfer::MessageFileText file("1");
    file.begin();
    file.addDay({1, 2, 3}, nullptr, nullptr);
    const std::string first(file.finish());
    file.begin();
    file.addDay({1, 2, 3}, nullptr, nullptr);
    EXPECT_EQ(first, file.finish());
}
