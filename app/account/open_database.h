// Opening the databases of an account, or saying why they stay closed.
#pragma once

#include "app/places/account_place.h"
#include "transfer/dbTrans.h"

namespace app {

/// The connection of that database.
[[nodiscard]] inline imsdk::dbUtils& connection(dbTrans& transfer, Database which) {
    return which == Database::main ? transfer.mainDb : transfer.backDb;
}

/// Opens the database in `transfer`, whose rootPath and dbKey are set. Throws a Failure that says why it does not open.
void openDatabase(dbTrans& transfer, const Account& account, Database which);

/// The same, and makes sure that it can be written to.
void openForWriting(dbTrans& transfer, const Account& account, Database which);

/// The same for a database that the account may not have yet. A wrong key or a lock is noticed before anything is done.
void checkForWriting(dbTrans& transfer, const Account& account, Database which);

/// Opens the database of notes and rooms likewise.
void openPluginDatabase(dbTrans& transfer, const Account& account);

}  // namespace app
