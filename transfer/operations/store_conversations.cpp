// Package import, second step: writes the messages that were read into the databases.
#include "transfer/operations/parts_of.h"
#include "transfer/tables/conversation_writer.h"
#include "transfer/tables/message_trimming.h"

unsigned int dbTrans::wtMsgToDB() {
    if (dbOpen() == 0) return chattransfer::kDatabaseFailed;
    chattransfer::Progress progress = chattransfer::progressOf(*this);
    const auto conversations = static_cast<long long>(msgMap.size());
    getTables();
    long long done = 0;
    const chattransfer::ErrorCode written = chattransfer::writeConversations(report, mainDb, tableNames, msgMap, [&] {
        ++done;
        progress.reportStep(1, done, conversations, done == conversations);
    });
    if (written != chattransfer::kSuccess) return written;
    checkMsgCount();
    wtRecontactToDb();
    return chattransfer::kSuccess;
}

unsigned int dbTrans::wtMsgToBackDB() {
    if (backdbOpen() == 0) return chattransfer::kDatabaseFailed;
    getTables2(backDb);
    return chattransfer::writeConversations(report, backDb, tableNames, msgMap, [] {});
}

int dbTrans::checkMsgCount() {
    const int count = countRows(16, nullptr, 0);
    return chattransfer::isOverfull(count) ? chattransfer::trimMessages(mainDb, trimTable, count, report) : count;
}
