// The reader of message files, held against a plain reading of the JSON library's tree: same records.
#include "transfer/format/message_text.h"

#include <gtest/gtest.h>

#include <array>

#include "host/base/numeric.h"
#include "host/json/json_owner.h"
#include "host/tools.h"
#include "tests/differential/json_generator.h"
#include "transfer/format/json_fields.h"

namespace {

using chattransfer::ReadKeys;

template <class Record>
std::string spell(const Record& record) {
    std::string out;
    const auto add = [&out](const auto& field) {
        if constexpr (std::is_same_v<std::decay_t<decltype(field)>, std::string>) {
            out += field + "|";
        } else {
            out += std::to_string(field) + "|";
        }
    };
    chattransfer::forEachMessageKey(record, [&](const char*, chattransfer::KeyUse, const auto& field) { add(field); });
    chattransfer::forEachMessageList(record, [&](const char*, const std::string& joined) { add(joined); });
    return out + std::to_string(record.year_) + "/" + std::to_string(record.mon) + "/" + std::to_string(record.day_) +
           "/" + std::to_string(record.status) + "/" + std::to_string(record.extraValue2) + "\n";
}

void getList(const JSON_Object* object, const char* key, std::string& joined) {
    const JSON_Array* array = json_object_get_array(object, key);
    std::vector<long long> numbers;
    for (size_t i = 0; i < json_array_get_count(array); ++i)
        numbers.push_back(json_array_get_int64(array, i));
    joined = tools::int64_To_String(numbers, ";");
}

imsdk::st_dbMessageBean messageOf(const JSON_Object* object, const JSON_Object* day, ReadKeys keys) {
    imsdk::st_dbMessageBean record;
    record.status = 4;
    record.extraValue2 = -1;
    chattransfer::forEachMessageKey(record, [object, keys](const char* key, chattransfer::KeyUse use, auto& field) {
        if (use == chattransfer::KeyUse::always || keys == ReadKeys::all) chattransfer::getField(object, key, field);
    });
    chattransfer::forEachMessageList(record,
                                     [object](const char* key, std::string& joined) { getList(object, key, joined); });
    const JSON_Object* date = json_object_get_object(day, "date");
    const auto number = [date](const char* key) {
        return static_cast<int>(tools::truncateTo<long long>(json_object_get_number(date, key)));
    };
    record.year_ = number("year");
    record.mon = number("month");
    record.day_ = number("day");
    return record;
}

std::string byTree(const std::string& text, ReadKeys keys = ReadKeys::ofImport) {
    const tools::JsonDocument document(json_parse_string(text.c_str()));
    if (!document) return "no JSON";
    const JSON_Object* file = json_value_get_object(document.get());
    if (file == nullptr) return "no object";
    const JSON_Array* days = json_object_get_array(file, "msgs");
    const char* version = json_object_get_string(file, "version");
    std::string out = version != nullptr ? std::string(version, json_object_get_string_len(file, "version")) : "none";
    out += days != nullptr ? " days\n" : " no days\n";
    for (size_t i = 0; i < json_array_get_count(days); ++i) {
        const JSON_Object* day = json_array_get_object(days, i);
        if (day == nullptr) continue;
        std::array<std::string, 2> lists;
        getList(day, "#limitRange", lists[0]);
        getList(day, "#relatedUsers", lists[1]);
        out += "day " + lists[0] + " " + lists[1] + "\n";
        const JSON_Array* messages = json_object_get_array(day, "msgs");
        for (size_t k = 0; k < json_array_get_count(messages); ++k) {
            const JSON_Object* message = json_array_get_object(messages, k);
            if (message != nullptr) out += spell(messageOf(message, day, keys));
        }
    }
    return out;
}

std::string byReader(std::string text, ReadKeys keys = ReadKeys::ofImport) {
    const chattransfer::MessageFileContent content = chattransfer::readMessageFileText(text, keys);
    if (!content.isJson) return "no JSON";
    if (!content.isObject) return "no object";
    std::string out = content.version.value_or("none");
    out += content.hasDays ? " days\n" : " no days\n";
    for (const chattransfer::MessageDay& day : content.days) {
        out += "day " + day.limitRange + " " + day.relatedUsers + "\n";
        for (const imsdk::st_dbMessageBean& message : day.messages)
            out += spell(message);
    }
    return out;
}

// Message files of random content: mostly of the right shape, with values of other types now and then.
class Files {
public:
    std::string next() {
        return "{" + member("version", "\"1.0\"") + "," + member("msgs", list([this] { return day(); })) + "}";
    }
    std::string nextBroken() { return generator_.broken(next()); }

private:
    std::string member(const std::string& key, const std::string& usual) {
        const std::string other = generator_.upTo(40) == 0 ? "\"other\":" + generator_.value(2) + "," : "";
        return other + "\"" + key + "\":" + (generator_.upTo(30) == 0 ? generator_.value(2) : usual);
    }

    template <class Element>
    std::string list(Element element) {
        std::string text = "[";
        for (int i = generator_.upTo(4); i > 0; --i) {
            text += (generator_.upTo(25) == 0 ? generator_.value(1) : element()) + (i > 1 ? "," : "");
        }
        return text + "]";
    }

    std::string date() {
        return "{" + member("year", generator_.number()) + "," + member("month", generator_.number()) + "," +
               member("day", generator_.number()) + "}";
    }

    std::string day() {
        const std::string messages = member("msgs", list([this] { return message(); }));
        const std::string under = member("date", date());
        const std::string lists = member("#limitRange", list([this] { return generator_.number(); }));
        return "{" + (generator_.upTo(2) == 0 ? messages + "," + under : under + "," + messages) + "," + lists + "}";
    }

    std::string message() {
        std::string text;
        const imsdk::st_dbMessageBean any;
        const auto add = [&](const std::string& key, const std::string& usual) {
            if (generator_.upTo(12) != 0) text += (text.empty() ? "" : ",") + member(key, usual);
        };
        chattransfer::forEachMessageKey(any, [&](const char* key, chattransfer::KeyUse, const auto& field) {
            const bool isText = std::is_same_v<std::decay_t<decltype(field)>, std::string>;
            add(key, isText ? generator_.string() : generator_.number());
        });
        chattransfer::forEachMessageList(
            any, [&](const char* key, const std::string&) { add(key, list([this] { return generator_.number(); })); });
        return "{" + text + "}";
    }

    test::JsonGenerator generator_{4};
};

}  // namespace

TEST(MessageText, ReadsGeneratedFilesLikeTheTree) {
    Files files;
    int accepted = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::string text = files.next();
        const std::string expected = byTree(text);
        ASSERT_EQ(expected, byReader(text)) << text;
        if (expected != "no JSON") ++accepted;
    }
    EXPECT_GT(accepted, 2000);
}

TEST(MessageText, ReadsBrokenFilesLikeTheTree) {
    Files files;
    for (int i = 0; i < 20000; ++i) {
        const std::string text = files.nextBroken();
        ASSERT_EQ(byTree(text), byReader(text)) << text;
    }
}

TEST(MessageText, ReadsAllKeysOfTheFormatWhenAskedTo) {
    Files files;
    for (int i = 0; i < 5000; ++i) {
        const std::string text = files.next();
        ASSERT_EQ(byTree(text, ReadKeys::all), byReader(text, ReadKeys::all)) << text;
    }
    std::string text = R"({"msgs":[{"msgs":[{"securityLevel":7}]}]})";
    EXPECT_EQ(7, chattransfer::readMessageFileText(text, ReadKeys::all).days.at(0).messages.at(0).securityLevel);
}

TEST(MessageText, TellsJsonWithoutAnObjectFromWhatIsNoJson) {
    test::JsonGenerator generator(5);
    for (const std::string& text : std::vector<std::string>{"[]", "12", "\"x\"", "null", " true", "[1,", "nul", "", " ",
                                                            "01", "\xEF\xBB\xBF[1]"}) {
        EXPECT_EQ(byTree(text), byReader(text)) << text;
    }
    for (int i = 0; i < 5000; ++i) {
        const std::string text = i % 2 == 0 ? generator.value(3) : generator.broken(generator.value(3));
        ASSERT_EQ(byTree(text), byReader(text)) << text;
    }
}
