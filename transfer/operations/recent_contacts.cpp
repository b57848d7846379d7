// Recent contacts: from the database into a package, and from a package or tree into the database.
#include "transfer/dbTrans.h"
#include "transfer/format/package_format.h"
#include "transfer/package/contact_file.h"
#include "transfer/tables/one_transaction.h"
#include "transfer/tables/recent_contact_merge.h"
#include "transfer/tables/recent_contact_table.h"
#include "transfer/tables/table_list.h"

long long dbTrans::readRecontactFromDB() {
    tableNames.clear();
    if (dbOpen() == 0) return chattransfer::kDatabaseFailed;
    getTables();
    if (!chattransfer::hasTable(tableNames, chattransfer::kRecentContactTable)) return chattransfer::kNoTables;
    chattransfer::readRecentContacts(mainDb, reContacts, report);
    return chattransfer::kSuccess;
}

int dbTrans::wtRecontactToFile() {
    const std::string path = msgFileDir + chattransfer::kRecentContactFileName;
    chattransfer::writeContactFile(path, packageVersion, reContacts, report);
    return 1;
}

unsigned int dbTrans::rdRecontactFromFile(std::string& path) {
    return chattransfer::readContactFile(path, packageVersion, reContacts, report);
}

unsigned int dbTrans::wtRecontactToDb() {
    const chattransfer::ErrorCode made = chattransfer::makeRecentContactTable(mainDb, tableNames, report);
    if (made != chattransfer::kSuccess) return made;
    return chattransfer::inOneTransaction(report, mainDb, chattransfer::kRecentContactTable, [this] {
        for (imsdk::st_dbReContactBean& contact : reContacts)
            static_cast<void>(chattransfer::mergeRecentContact(mainDb, contact, report));  // counted in the report
        return chattransfer::kSuccess;
    });
}

int dbTrans::isRecontactExsit(imsdk::st_dbReContactBean& record) {
    return chattransfer::mergeRecentContact(mainDb, record, report);
}
