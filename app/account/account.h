// An account on disk: its databases and its attachment folders.
#pragma once

#include <string>
#include <vector>

#include "transfer/dbTrans.h"

namespace app {

/// The databases that hold messages.
enum class Database { main, back };

/// The places of one account. Paths are absolute: commands change their working directory.
class Account {
public:
    explicit Account(const std::string& folder);

    const std::string& root() const { return root_; }
    std::string database(Database which) const;
    std::vector<std::string> databases() const;
    std::string pluginDatabase() const { return root_ + "/db/plugin/kab.db"; }

private:
    std::string root_;
};

/// The connection of that database.
inline imsdk::dbUtils& connection(dbTrans& transfer, Database which) {
    return which == Database::main ? transfer.mainDb : transfer.backDb;
}

/// Whether the database may be made. A link that leads nowhere is the user's (the disk that it leads to may be away),
/// and where nobody can look there may be a database already.
bool isFree(const std::string& database);

/// Makes what the account lacks: its folders, for their owner only, and its databases, encrypted when there is a key.
/// What is there stays as it is. Returns the paths of the databases made. Throws Failure.
std::vector<std::string> makeMissingParts(const Account& account, const std::string& key);

/// Opens the database in `transfer`, whose rootPath and dbKey are set. Throws a Failure that says why it does not open.
void openDatabase(dbTrans& transfer, const Account& account, Database which);

/// The same, and makes sure that it can be written to.
void openForWriting(dbTrans& transfer, const Account& account, Database which);

/// The same for a database that the account may not have yet. A wrong key or a lock is noticed before anything is done.
void checkForWriting(dbTrans& transfer, const Account& account, Database which);

/// Opens the database of notes and rooms likewise.
void openPluginDatabase(dbTrans& transfer, const Account& account);

}  // namespace app
