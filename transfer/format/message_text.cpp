#include "transfer/format/message_text.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "host/base/numeric.h"
#include "host/json/json_reader.h"
#include "host/tools.h"

namespace chattransfer {
namespace {

using imsdk::st_dbMessageBean;
using tools::JsonReader;

// --- Values: one of another type than the field's is passed over, and the field keeps its default ---

// Texts end at their first NUL, as they do for the JSON library.
void readValue(JsonReader& reader, std::string& field) {
    if (!reader.atString()) return reader.skip();
    field.assign(reader.readText());
}

void readValue(JsonReader& reader, long long& field) {
    if (!reader.atNumber()) return reader.skip();
    field = reader.readNumber().exact;
}

void readValue(JsonReader& reader, int& field) {
    if (!reader.atNumber()) return reader.skip();
    field = tools::truncateTo<int>(reader.readNumber().value);
}

void readTruncated(JsonReader& reader, long long& field) {
    if (!reader.atNumber()) return reader.skip();
    field = tools::truncateTo<long long>(reader.readNumber().value);
}

// An array of ids as a text joined by ";"; elements of other types count as 0.
void readList(JsonReader& reader, std::string& joined) {
    if (!reader.atArray()) return reader.skip();
    std::vector<long long> numbers;
    reader.enter();
    while (reader.nextElement()) {
        numbers.push_back(0);
        readValue(reader, numbers.back());
    }
    joined = tools::int64_To_String(numbers, kListSeparator);
}

// Calls readElement() for each object of the array that stands next.
template <class ReadElement>
void readObjects(JsonReader& reader, ReadElement readElement) {
    reader.enter();
    while (reader.nextElement()) {
        if (reader.atObject()) {
            readElement();
        } else {
            reader.skip();
        }
    }
}

// --- Objects, by the key lists of package_format.h ---

constexpr std::size_t kScalarKeys = 14;
constexpr std::size_t kListKeys = 2;
using MessageKeys = std::array<std::string_view, kScalarKeys + kListKeys>;

MessageKeys messageKeys() {
    MessageKeys keys;
    std::size_t count = 0;
    const st_dbMessageBean any;
    forEachMessageKey(any, [&](const char* key, KeyUse /*use*/, const auto& /*field*/) { keys.at(count++) = key; });
    forEachMessageList(any, [&](const char* key, const std::string& /*joined*/) { keys.at(count++) = key; });
    return keys;
}

// Calls visit(readValue) for each key in file order; readValue() reads the value that stands next into the key's field.
template <class Visit>
void forEachValue(JsonReader& reader, ReadKeys wanted, st_dbMessageBean& message, Visit visit) {
    forEachMessageKey(message, [&](const char* key, KeyUse use, auto& field) {
        visit(key, [&] {
            if (use == KeyUse::always || wanted == ReadKeys::all) {
                readValue(reader, field);
            } else {
                reader.skip();
            }
        });
    });
    forEachMessageList(message,
                       [&](const char* key, std::string& joined) { visit(key, [&] { readList(reader, joined); }); });
}

void readMember(JsonReader& reader, std::size_t index, ReadKeys wanted, st_dbMessageBean& message) {
    std::size_t current = 0;
    forEachValue(reader, wanted, message, [&](const char* /*key*/, auto readIt) {
        if (current++ == index) readIt();
    });
}

void readMessage(JsonReader& reader, ReadKeys wanted, st_dbMessageBean& message) {
    static const MessageKeys keys = messageKeys();
    message.status = kImportedStatus;
    message.extraValue2 = -1;
    reader.enter();
    bool more = reader.nextMember();
    // As the writer leaves them, members stand in the order of the keys: one pass over the keys reads them all, and no
    // name is looked up. What stands otherwise is left to the general loop.
    std::array<bool, kScalarKeys + kListKeys> seen{};
    std::size_t index = 0;
    forEachValue(reader, wanted, message, [&](const char* key, auto readIt) {
        const std::size_t current = index++;
        if (!more || !reader.passName(key)) return;
        seen[current] = true;
        readIt();
        more = reader.nextMember();
    });
    tools::readJsonMembers(reader, more, keys, seen,
                           [&](std::size_t member) { readMember(reader, member, wanted, message); });
}

CalendarDay readDate(JsonReader& reader) {
    static constexpr std::array<std::string_view, 3> keys = {kYearKey, kMonthKey, kDayKey};
    CalendarDay date;
    const std::array<long long*, 3> fields = {&date.year, &date.month, &date.day};
    if (!reader.atObject()) {
        reader.skip();
        return date;
    }
    tools::readJsonObject(reader, keys, [&](std::size_t index) { readTruncated(reader, *fields.at(index)); });
    return date;
}

void readMessages(JsonReader& reader, ReadKeys wanted, std::vector<st_dbMessageBean>& messages) {
    // Growing step by step moves each record once more. The room that a day does not need is given back: a file may
    // have a hundred thousand days.
    constexpr std::size_t kShortMessage = 300;
    constexpr std::size_t kUsualDay = 250;
    if (!reader.atArray()) return reader.skip();
    messages.reserve(std::min(kUsualDay, reader.bytesLeft() / kShortMessage));
    readObjects(reader, [&] { readMessage(reader, wanted, messages.emplace_back()); });
    if (messages.size() < messages.capacity() / 2) messages.shrink_to_fit();
}

MessageDay readDay(JsonReader& reader, ReadKeys wanted) {
    MessageDay day;
    st_dbMessageBean lists;
    std::array<std::string_view, 2 + kListKeys> keys = {kMessagesKey, kDateKey};
    std::array<std::string*, kListKeys> fields{};
    std::size_t count = 0;
    forEachMessageList(lists, [&](const char* key, std::string& joined) {
        keys.at(2 + count) = key;
        fields.at(count++) = &joined;
    });
    tools::readJsonObject(reader, keys, [&](std::size_t index) {
        if (index == 0) {
            readMessages(reader, wanted, day.messages);
        } else if (index == 1) {
            day.date = readDate(reader);
        } else {
            readList(reader, *fields.at(index - 2));
        }
    });
    day.limitRange = std::move(lists.limitRange);
    day.relatedUsers = std::move(lists.relatedUsers);
    return day;
}

void putUnderItsDate(MessageDay& day) {
    for (st_dbMessageBean& message : day.messages) {
        message.year_ = static_cast<int>(day.date.year);
        message.mon = static_cast<int>(day.date.month);
        message.day_ = static_cast<int>(day.date.day);
    }
}

void readDays(JsonReader& reader, ReadKeys wanted, MessageFileContent& content) {
    content.hasDays = reader.atArray();
    if (!content.hasDays) return reader.skip();
    readObjects(reader, [&] {
        content.days.push_back(readDay(reader, wanted));
        putUnderItsDate(content.days.back());
    });
}

void readVersion(JsonReader& reader, std::optional<std::string>& version) {
    if (!reader.atString()) return reader.skip();
    version = reader.readString();
}

void readFile(JsonReader& reader, ReadKeys wanted, MessageFileContent& content) {
    static constexpr std::array<std::string_view, 2> keys = {kVersionKey, kMessagesKey};
    tools::readJsonObject(reader, keys, [&](std::size_t index) {
        if (index == 0) {
            readVersion(reader, content.version);
        } else {
            readDays(reader, wanted, content);
        }
    });
}

}  // namespace

MessageFileContent readMessageFileText(std::string& text, ReadKeys keys) {
    JsonReader reader(text);
    MessageFileContent content;
    content.isObject = reader.atObject();
    if (content.isObject) {
        readFile(reader, keys, content);
    } else {
        reader.skip();
    }
    if (!reader.ok()) return {};
    content.isJson = true;
    return content;
}

}  // namespace chattransfer
