#include "app/account/open_database.h"

#include "app/account/closed_database.h"
#include "app/base/failure.h"

namespace app {

void openDatabase(dbTrans& transfer, const Account& account, Database which) {
    transfer.rootPath = account.root();
    if ((which == Database::main ? transfer.dbOpen() : transfer.backdbOpen()) != 0) return;
    throw Failure(wordsForClosed(connection(transfer, which), account.database(which), !transfer.dbKey.empty()));
}

void openForWriting(dbTrans& transfer, const Account& account, Database which) {
    openDatabase(transfer, account, which);
    requireWritable(connection(transfer, which), account.database(which));
}

void checkForWriting(dbTrans& transfer, const Account& account, Database which) {
    if (lookAt(account.database(which)) != FileLook::missing) openForWriting(transfer, account, which);
}

void openPluginDatabase(dbTrans& transfer, const Account& account) {
    transfer.rootPath = account.root();
    if (transfer.kabDbOpen() != 0) return;
    FailureWords words = wordsForClosed(transfer.pluginDb, account.pluginDatabase(), !transfer.dbKey.empty());
    words.what = "The plugin database, which holds notes and rooms, does not open";
    throw Failure(words);
}

}  // namespace app
