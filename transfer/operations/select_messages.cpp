// Export, first step: selects messages from the databases.
#include <utility>

#include "transfer/operations/parts_of.h"
#include "transfer/package/day_entries.h"
#include "transfer/package/message_selection.h"

using imsdk::st_dbMessageBean;

namespace {

void noteUnplaced(TransferReport& report, const std::string& dayKey) {
    report.skip(dayKey, chattransfer::Omission::messageUnplaced);
}

chattransfer::MessageSource sourceOf(dbTrans& transfer) {
    return {transfer.mainDb, transfer.tableNames, chattransfer::attachmentPathsOf(transfer), transfer.report};
}

}  // namespace

unsigned int dbTrans::rdMsgFromDB(int year, int mon, int day) {
    const auto contacts = static_cast<unsigned int>(readRecontactFromDB());
    if (contacts != chattransfer::kSuccess) return contacts;
    dataClear();
    if (backdbOpen() == 0) return chattransfer::kDatabaseFailed;
    getTables();
    if (tableNames.empty()) return chattransfer::kNoTables;
    chattransfer::DayEntries days(dayMsgMap, ':');
    chattransfer::selectFromAllTables(sourceOf(*this), {year, mon, day}, [&](st_dbMessageBean& message) {
        if (chattransfer::MessagesOfDay* entry = days.withRoom(message)) {
            entry->push_back(std::move(message));
        } else {
            noteUnplaced(report, chattransfer::dayKeyOf(message, ':'));
        }
    });
    return chattransfer::kSuccess;
}

unsigned int dbTrans::rdMsgFromDB2(int year, int mon, int day) {
    dataClear();
    if (dbOpen() == 0) return chattransfer::kDatabaseFailed;
    getTables();
    if (tableNames.empty()) return chattransfer::kNoTables;
    chattransfer::DayEntries days(dayMsgMap, '_');
    chattransfer::selectFromAllTables(sourceOf(*this), {year, mon, day}, [&](st_dbMessageBean& message) {
        days.of(message).push_back(std::move(message));
    });
    return chattransfer::kSuccess;
}

void dbTrans::searchItem(std::string dayKey, st_dbMessageBean& msg) {
    int overflow = 0;
    if (chattransfer::MessagesOfDay* entry = chattransfer::DayEntries::nextOverflow(dayMsgMap, dayKey, overflow)) {
        entry->push_back(msg);
    } else {
        noteUnplaced(report, dayKey);
    }
}

int dbTrans::parseUrl(std::string body, int msgType) {
    return chattransfer::attachmentPathsOf(*this).take(body, msgType);
}
