#include "transfer/tables/one_transaction.h"

namespace chattransfer {

RowCounts::RowCounts(const TransferReport& report)
    : messagesInserted_(report.messagesInserted),
      messagesTrimmed_(report.messagesTrimmed),
      tablesCreated_(report.tablesCreated),
      contactsInserted_(report.contactsInserted),
      contactsPinned_(report.contactsPinned),
      notesInserted_(report.notesInserted),
      roomsInserted_(report.roomsInserted) {}

void RowCounts::restoreIn(TransferReport& report) const {
    report.messagesInserted = messagesInserted_;
    report.messagesTrimmed = messagesTrimmed_;
    report.tablesCreated = tablesCreated_;
    report.contactsInserted = contactsInserted_;
    report.contactsPinned = contactsPinned_;
    report.notesInserted = notesInserted_;
    report.roomsInserted = roomsInserted_;
}

}  // namespace chattransfer
