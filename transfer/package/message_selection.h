// Selecting the messages that an export takes.
#pragma once

#include <string>
#include <vector>

#include "host/base/fixed_text.h"
#include "host/dbUtils.h"
#include "transfer/format/attachment_body.h"
#include "transfer/package/attachment_paths.h"
#include "transfer/records.h"
#include "transfer/tables/message_table.h"
#include "transfer/transfer_report.h"

namespace chattransfer {

/// The first day that is selected.
struct FirstDay {
    int year;
    int mon;
    int day;
};

/// Room for the longest plain statement: a table name that does not fit is reported, and its table left out.
using SelectStatement = tools::FixedText<256>;

/// The messages of `table` dated on or after `since`.
[[nodiscard]] SelectStatement selectStatement(const std::string& table, const FirstDay& since);

/// Calls take(message) for each row; the message may be moved from. False when they could not all be read.
template <class Take>
[[nodiscard]] bool selectMessages(imsdk::dbUtils& db, const SelectStatement& statement, Take take) {
    imsdk::dbDataReader reader = db.excuteQuery(statement.text());
    imsdk::st_dbMessageBean message;
    while (reader.read() != 0) {
        readMessageRow(reader, message);
        take(message);
    }
    return !reader.failed();
}

/// Where a selection reads, and what it notes beside the messages.
struct MessageSource {
    imsdk::dbUtils& db;
    const std::vector<std::string>& tables;
    AttachmentPaths attachments;
    TransferReport& report;
};

/// Calls take(message) for each message of all message tables dated on or after `since`; it may be moved from. Tables
/// that cannot be read whole are reported and contribute what was read of them.
template <class Take>
void selectFromAllTables(MessageSource source, const FirstDay& since, Take take) {
    for (const std::string& table : source.tables) {
        if (!isMessageTable(table)) continue;
        const SelectStatement statement = selectStatement(table, since);
        if (!isPlainTableName(table) || !statement.fits()) {
            source.report.skip(table, Omission::tableMisnamed);
            continue;
        }
        const bool whole = selectMessages(source.db, statement, [&](imsdk::st_dbMessageBean& message) {
            ++source.report.messagesSelected;
            // A body that names no files is a message all the same.
            if (carriesAttachments(message.msgType))
                static_cast<void>(source.attachments.take(message.body, message.msgType));
            take(message);
        });
        if (!whole) source.report.skip(table, Omission::tableUnreadable, source.db.lastError());
    }
}

}  // namespace chattransfer
