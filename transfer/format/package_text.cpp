#include "transfer/format/package_text.h"

#include <cstring>
#include <string_view>
#include <vector>

#include "host/json/json_text.h"
#include "host/tools.h"

namespace chattransfer {
namespace {

using imsdk::st_dbMessageBean;

// Everything that stands between two values of a message object: ',"key":', or '{"key":' for the first. Keys are plain
// ASCII: nothing in them needs an escape.
std::vector<std::string> buildKeyTexts() {
    std::vector<std::string> texts;
    const auto add = [&texts](const char* key) {
        texts.push_back((texts.empty() ? "{\"" : ",\"") + std::string(key) + "\":");
    };
    const st_dbMessageBean any;
    forEachMessageKey(any, [&add](const char* key, KeyUse /*use*/, const auto& /*field*/) { add(key); });
    forEachMessageList(any, [&add](const char* key, const std::string& /*joined*/) { add(key); });
    return texts;
}

// Texts end at their first NUL, as they do for the JSON library.
void appendValue(tools::TextBuffer& out, const std::string& text) {
    tools::appendJsonText(out, std::string_view(text.data(), std::strlen(text.c_str())));
}
void appendValue(tools::TextBuffer& out, long long number) {
    tools::appendJsonNumber(out, number);
}

void appendList(tools::TextBuffer& out, const std::string& joined) {
    out += '[';
    if (!joined.empty()) {
        const char* separator = "";
        for (const long long number : tools::string_To_Vec_Int64(joined, kListSeparator)) {
            out += separator;
            tools::appendJsonNumber(out, number);
            separator = ",";
        }
    }
    out += ']';
}

void appendKey(tools::TextBuffer& out, const char* before, const char* key) {
    out += before;
    out += key;
    out += "\":";
}

}  // namespace

void appendMessage(tools::TextBuffer& out, const st_dbMessageBean& message) {
    static const std::vector<std::string> keyTexts = buildKeyTexts();
    auto keyText = keyTexts.begin();
    forEachMessageKey(message, [&](const char* /*key*/, KeyUse /*use*/, const auto& field) {
        out += *keyText++;
        appendValue(out, field);
    });
    forEachMessageList(message, [&](const char* /*key*/, const std::string& joined) {
        out += *keyText++;
        appendList(out, joined);
    });
    out += '}';
}

void MessageFileText::begin() {
    text_.clear();
    appendKey(text_, "{\"", kVersionKey);
    appendValue(text_, version_);
    appendKey(text_, ",\"", kMessagesKey);
    text_ += '[';
    hasDay_ = false;
}

void MessageFileText::addDay(const CalendarDay& day, const st_dbMessageBean* first, const st_dbMessageBean* last) {
    if (hasDay_) text_ += ',';
    hasDay_ = true;
    appendKey(text_, "{\"", kMessagesKey);
    text_ += '[';
    for (const st_dbMessageBean* message = first; message != last; ++message) {
        if (message != first) text_ += ',';
        appendMessage(text_, *message);
    }
    text_ += ']';
    appendKey(text_, ",\"", kDateKey);
    appendKey(text_, "{\"", kYearKey);
    appendValue(text_, day.year);
    appendKey(text_, ",\"", kMonthKey);
    appendValue(text_, day.month);
    appendKey(text_, ",\"", kDayKey);
    appendValue(text_, day.day);
    text_ += "}}";
}

std::string_view MessageFileText::finish() {
    text_ += "]}";
    return text_.text();
}

}  // namespace chattransfer
