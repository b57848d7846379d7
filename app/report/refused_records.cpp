#include "app/report/refused_records.h"

namespace app {
namespace {

long long refused(std::size_t read, long long inserted, long long present) {
    return static_cast<long long>(read) - inserted - present;
}

}  // namespace

long long refusedContacts(const dbTrans& transfer) {
    const TransferReport& report = transfer.report;
    return refused(transfer.reContacts.size(), report.contactsInserted + report.contactsPinned, report.contactsKept);
}

long long refusedNotes(const dbTrans& transfer) {
    return refused(transfer.notes.size(), transfer.report.notesInserted, transfer.report.notesDuplicate);
}

long long refusedRooms(const dbTrans& transfer) {
    return refused(transfer.rooms.size(), transfer.report.roomsInserted, transfer.report.roomsDuplicate);
}

}  // namespace app
