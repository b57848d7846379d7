#include "transfer/tables/recent_contact_merge.h"

#include <utility>

#include "host/base/fixed_text.h"
#include "transfer/tables/bind_field.h"
#include "transfer/tables/recent_contact_table.h"
#include "transfer/tables/table_list.h"

namespace chattransfer {
namespace {

using imsdk::st_dbReContactBean;

// Room for each of the statements with the table's name and an id.
using ContactStatement = tools::FixedText<512>;

int insertContact(imsdk::dbUtils& db, const st_dbReContactBean& contact, TransferReport& report) {
    imsdk::dbCommand command(&db, ContactStatement(kInsertRecentContact, kRecentContactTable).text());
    int index = 0;
    forEachRecentContactField(
        contact, [&](int /*column*/, const char* /*name*/, const auto& field) { bindField(command, ++index, field); });
    const int stored = db.excuteNonQuery(&command);
    if (stored != 0) ++report.contactsInserted;
    return stored;
}

int updateContact(imsdk::dbUtils& db, const st_dbReContactBean& contact) {
    imsdk::dbCommand command(&db, ContactStatement(kUpdateRecentContact, kRecentContactTable).text());
    int index = 0;
    forEachRecentContactField(contact, [&](int column, const char* /*name*/, const auto& field) {
        if (column != 0) bindField(command, ++index, field);
    });
    bindField(command, ++index, contact.targetID);
    return db.excuteNonQuery(&command);
}

int pinContact(imsdk::dbUtils& db, long long targetID, int top, TransferReport& report) {
    imsdk::dbCommand command(&db, ContactStatement(kPinRecentContact, kRecentContactTable).text());
    command.bindParam(1, top);
    command.bindParam(2, targetID);
    const int stored = db.excuteNonQuery(&command);
    if (stored != 0) ++report.contactsPinned;
    return stored;
}

// What the merge knows of a stored contact.
struct StoredContact {
    bool found = false;
    long long time = 0;
    int top = 0;
};

StoredContact findContact(imsdk::dbUtils& db, long long targetID) {
    const ContactStatement query(kFindRecentContact, kRecentContactTable, targetID);
    imsdk::dbDataReader reader = db.excuteQuery(query.text());
    StoredContact stored;
    stored.found = reader.read() != 0;
    reader.getColumnValue(kRecentContactTimeColumn, stored.time);
    reader.getColumnValue(kRecentContactTopColumn, stored.top);
    return stored;
}

}  // namespace

void readRecentContacts(imsdk::dbUtils& db, std::vector<st_dbReContactBean>& contacts, TransferReport& report) {
    imsdk::dbDataReader reader = db.excuteQuery(ContactStatement("select * from %s", kRecentContactTable).text());
    while (reader.read() != 0) {
        st_dbReContactBean contact;
        readRecentContactRow(reader, contact);
        contacts.push_back(std::move(contact));
    }
    if (reader.failed()) report.skip(kRecentContactTable, Omission::tableUnreadable, db.lastError());
}

ErrorCode makeRecentContactTable(imsdk::dbUtils& db, std::vector<std::string>& tableNames, TransferReport& report) {
    if (hasTable(tableNames, kRecentContactTable)) return kSuccess;
    if (db.excuteNonQuery(kCreateRecentContactTable) == 0) {
        report.skip(kRecentContactTable, Omission::tableNotCreated, db.lastError());
        return kDatabaseFailed;
    }
    tableNames.emplace_back(kRecentContactTable);
    return kSuccess;
}

int mergeRecentContact(imsdk::dbUtils& db, st_dbReContactBean& contact, TransferReport& report) {
    StoredContact stored = findContact(db, contact.targetID);
    if (!stored.found) return insertContact(db, contact, report);
    if (((stored.top | contact.top) & kPinnedBit) != 0) {
        stored.top |= kPinnedBit;
        contact.top = static_cast<signed char>(contact.top | kPinnedBit);
    }
    if (contact.time > stored.time) {
        ++report.contactsKept;
        return updateContact(db, contact);
    }
    if ((stored.top & kPinnedBit) != 0) return pinContact(db, contact.targetID, stored.top, report);
    ++report.contactsKept;
    return 1;
}

}  // namespace chattransfer
