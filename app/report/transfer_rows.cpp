#include "app/report/transfer_rows.h"

#include "app/report/refused_records.h"

namespace app {

void addMessageRows(Summary& summary, const TransferReport& report) {
    summary.add("messages.read", "Messages read", report.messagesRead);
    summary.add("messages.written", "Messages inserted", report.messagesInserted);
    summary.add("messages.duplicate", "Messages there already", report.messagesDuplicate);
    summary.add("messages.refused", "Messages refused", report.messagesRefused);
    summary.addIfAny("messages.trimmed", "Messages trimmed", report.messagesTrimmed);
}

void addContactRows(Summary& summary, const dbTrans& transfer) {
    const TransferReport& report = transfer.report;
    summary.add("recentContacts.read", "Recent contacts read", static_cast<long long>(transfer.reContacts.size()));
    summary.add("recentContacts.written", "Recent contacts inserted", report.contactsInserted);
    summary.addIfAny("recentContacts.pinned", "Recent contacts pinned", report.contactsPinned);
    summary.addIfAny("recentContacts.alreadyThere", "Recent contacts there already", report.contactsKept);
    summary.addIfAny("recentContacts.refused", "Recent contacts refused", refusedContacts(transfer));
}

void addAttachmentRows(Summary& summary, const TransferReport& report, const std::string& done) {
    const long long referenced = report.attachmentsDone + report.attachmentsPresent + report.attachmentsMissing +
                                 report.attachmentsRefused + report.attachmentsFailed;
    summary.add("attachments.referenced", "Attachments referenced", referenced);
    summary.add("attachments.copied", "Attachments " + done, report.attachmentsDone);
    summary.addIfAny("attachments.alreadyThere", "Attachments there already", report.attachmentsPresent);
    summary.add("attachments.missing", "Attachments missing", report.attachmentsMissing);
    summary.add("attachments.refused", "Attachments refused", report.attachmentsRefused);
    summary.addIfAny("attachments.failed", "Attachments failed", report.attachmentsFailed);
}

}  // namespace app
