// A message file of a package: our reader takes what the JSON library takes, what is taken survives writing and reading
// again, and the import of the package stays in the user's folders.
#include "fuzz/property.h"
#include "fuzz/round_trip.h"
#include "fuzz/sandbox.h"
#include "tests/support/stock_parser.h"
#include "transfer/format/message_text.h"
#include "transfer/format/package_text.h"

namespace {

using chattransfer::MessageDay;
using chattransfer::MessageFileContent;
using fuzz::require;
using imsdk::st_dbMessageBean;

std::string written(const MessageFileContent& content) {
    chattransfer::MessageFileText file(fuzz::kVersion);
    file.begin();
    for (const MessageDay& day : content.days)
        file.addDay(day.date, day.messages.data(), day.messages.data() + day.messages.size());
    return std::string(file.finish());
}

MessageFileContent readAll(std::string text) {
    return chattransfer::readMessageFileText(text, chattransfer::ReadKeys::all);
}

bool sameDate(const chattransfer::CalendarDay& before, const chattransfer::CalendarDay& after) {
    return fuzz::survives(before.year, after.year) && fuzz::survives(before.month, after.month) &&
           fuzz::survives(before.day, after.day);
}

bool sameKeys(const st_dbMessageBean& before, const st_dbMessageBean& after) {
    bool same = true;
    int key = 0;
    chattransfer::forEachMessageKey(before, [&](const char* /*key*/, chattransfer::KeyUse /*use*/, const auto& field) {
        int other = 0;
        chattransfer::forEachMessageKey(after, [&](const char* /*key*/, chattransfer::KeyUse /*use*/, const auto& its) {
            if constexpr (std::is_same_v<decltype(field), decltype(its)>) {
                if (other == key) same = same && fuzz::survives(field, its);
            }
            ++other;
        });
        ++key;
    });
    return same;
}

void requireSame(const MessageFileContent& before, const MessageFileContent& after) {
    require(before.days.size() == after.days.size(), "every day survives");
    for (std::size_t i = 0; i < before.days.size(); ++i) {
        const MessageDay& day = before.days[i];
        const MessageDay& other = after.days[i];
        require(sameDate(day.date, other.date), "the date survives");
        require(day.messages.size() == other.messages.size(), "every message survives");
        for (std::size_t k = 0; k < day.messages.size(); ++k)
            require(sameKeys(day.messages[k], other.messages[k]), "the message survives");
    }
}

void checkReader(const std::string& text) {
    const MessageFileContent content = readAll(text);
    // json_parse_string() is read by our reader, too.
    require(content.isJson == (test::parseByLibrary(text) != nullptr), "the reader takes what the library takes");
    if (!content.hasDays) return;
    const std::string once = written(content);
    const MessageFileContent again = readAll(once);
    require(again.hasDays && again.version == fuzz::kVersion, "what is written can be read");
    requireSame(content, again);
    require(written(again) == once, "a second trip changes nothing");
}

void checkImport(const fuzz::Sandbox& sandbox, const std::string& text) {
    fuzz::Sandbox::write(sandbox.packageMessages() + "msg_0.mg", text);
    dbTrans transfer;
    sandbox.enter(transfer);
    const unsigned int code = transfer.rdMsgFromFile();
    require(code == chattransfer::kSuccess || code == chattransfer::kWrongVersion, "an import gives a known result");
    sandbox.requireUntouched(sandbox.account());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Sandbox sandbox;
    const std::string text(reinterpret_cast<const char*>(data), size);
    checkReader(text);
    checkImport(sandbox, text);
    return 0;
}
