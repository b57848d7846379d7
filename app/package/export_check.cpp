#include "app/package/export_check.h"

#include <algorithm>
#include <cstring>

#include "app/base/failure.h"
#include "host/tools.h"
#include "transfer/format/package_format.h"
#include "transfer/tables/message_table.h"

namespace app {
namespace {

bool isConversation(const std::string& table) {
    const std::size_t prefix = std::strlen(chattransfer::kMessageTablePrefix);
    return table.size() > prefix && table.compare(0, prefix, chattransfer::kMessageTablePrefix) == 0 &&
           std::all_of(table.begin() + static_cast<std::ptrdiff_t>(prefix), table.end(),
                       [](char c) { return c >= '0' && c <= '9'; });
}

// A table that only looks like a conversation's: leaving it out loses none.
bool isForeignTable(const TransferReport::Skipped& skipped) {
    const std::string& name = skipped.what;
    return chattransfer::thingOf(skipped.kind) == chattransfer::OmittedThing::table &&
           chattransfer::isMessageTable(name) && !isConversation(name);
}

}  // namespace

void requireWholeSelection(const TransferReport& report, const std::string& database) {
    for (const TransferReport::Skipped& skipped : report.skipped) {
        if (isForeignTable(skipped)) continue;
        throw Failure({chattransfer::kDatabaseFailed, "The account could not be read whole, and no package was made",
                       database, skipped.what + ": " + skipped.reason,
                       "when the client is running, close it and try again"});
    }
}

long long countUndated(dbTrans& transfer) {
    long long undated = 0;
    for (const std::string& table : transfer.tableNames) {
        if (!isConversation(table)) continue;
        imsdk::dbDataReader reader =
            transfer.mainDb.excuteQuery(("select count(*) from " + table + " where year_ is null").c_str());
        long long count = 0;
        if (reader.read() != 0) reader.getColumnValue(0, count);
        undated += count;
    }
    return undated;
}

long long expectedMessages(const dbTrans& transfer, Layout layout) {
    const long long selected = transfer.report.messagesSelected;
    if (layout == Layout::days || transfer.dayMsgMap.empty()) return selected;
    const auto lastDay = static_cast<long long>(transfer.dayMsgMap.rbegin()->second.size());
    const long long before = selected - lastDay;
    constexpr auto kFile = static_cast<long long>(chattransfer::kMessagesPerFile);
    return before + std::min(lastDay, kFile - before % kFile);
}

bool holdsAll(const dbTrans& transfer, Layout layout) {
    if (transfer.report.messagesWritten != expectedMessages(transfer, layout)) return false;
    if (layout == Layout::packed) return true;
    const bool allContacts = transfer.report.contactsWritten == static_cast<long long>(transfer.reContacts.size());
    return allContacts && tools::isFileExsit(transfer.msgFileDir + chattransfer::kRecentContactFileName) != 0;
}

long long unexpectedlyFailedAttachments(const dbTrans& transfer) {
    const auto& images = transfer.imagePaths;
    const auto homeless = std::count_if(images.begin(), images.end(),
                                        [](const std::string& path) { return path.find('/') == std::string::npos; });
    return std::max(0LL, transfer.report.attachmentsFailed - static_cast<long long>(homeless));
}

}  // namespace app
