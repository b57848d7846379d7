#include "app/account/missing_parts.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <cstdio>
#include <iostream>

#include "app/base/failure.h"
#include "app/base/printable.h"
#include "host/dbUtils.h"
#include "host/files/file_handle.h"
#include "host/files/file_status.h"
#include "host/files/temporary_name.h"
#include "host/tools.h"
#include "transfer/error_codes.h"
#include "transfer/format/account_folders.h"

namespace app {
namespace {

constexpr mode_t kOwnerOnly = 0600;

void makeFolder(const std::string& path) {
    if (tools::createDir(path.c_str()) == 0) return;
    throw Failure({0, "A folder of the account cannot be made", path, systemWords(errno),
                   "choose a place that you may write to"});
}

// Writing the schema version that every new database has gives an empty file its header, and with a key its encryption:
// from then on a wrong key is noticed.
constexpr const char* kFirstWrite = "PRAGMA user_version = 0";

// Where the database `path` is made: no two of an account are in one folder under one name.
std::string unfinishedName(const std::string& path) {
    const std::size_t name = path.rfind('/') + 1;
    return path.substr(0, name) + tools::temporaryName(path.substr(name));
}

// What an interrupted run left, in this version or an earlier one. What cannot be removed is in the way of a new
// database, and said there.
void removeUnfinished(const std::string& path) {
    for (const std::string& unfinished : {unfinishedName(path), path + ".part"}) {
        static_cast<void>(tools::removeFile(unfinished + "-journal"));
        static_cast<void>(tools::removeFile(unfinished));
    }
}

[[noreturn]] void failToMake(const std::string& path, const std::string& reason) {
    throw Failure({chattransfer::kDatabaseFailed, "A database cannot be made", path, reason, ""});
}

void fillDatabase(const std::string& unfinished, const std::string& path, const std::string& key) {
    const tools::detail::FileHandle file(open(unfinished.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerOnly));
    if (!file.valid()) failToMake(path, systemWords(errno));
    imsdk::dbUtils db;
    const bool made =
        db.open(unfinished.c_str(), key.empty() ? nullptr : key.c_str()) != 0 && db.excuteNonQuery(kFirstWrite) != 0;
    if (!made) failToMake(path, db.lastError());
}

// A run that is interrupted must not leave an empty file under the database's name: it would never be encrypted.
void makeDatabase(const std::string& path, const std::string& key) {
    const std::string unfinished = unfinishedName(path);
    fillDatabase(unfinished, path, key);
    if (std::rename(unfinished.c_str(), path.c_str()) != 0) failToMake(path, systemWords(errno));
}

// Keeps two commands from making the databases of one account at a time. Ends with the handle.
tools::detail::FileHandle lockDatabases(const Account& account) {
    tools::detail::FileHandle folder = tools::detail::openFolder(AT_FDCWD, (account.root() + "/db").c_str());
    if (folder.valid()) static_cast<void>(flock(folder.get(), LOCK_EX));
    return folder;
}

void printNew(const char* verb, const std::string& path, const std::string& key) {
    std::cout << verb << " a new "
              << (key.empty() ? "database (not encrypted: no key was given): " : "encrypted database: ")
              << printable(path) << '\n';
}

}  // namespace

std::vector<std::string> makeMissingParts(const Account& account, const std::string& key) {
    for (const char* folder :
         {"/db/plugin", chattransfer::kAudioFolder, chattransfer::kImageFolder, chattransfer::kFileFolder}) {
        makeFolder(account.root() + folder);
    }
    const tools::detail::FileHandle lock = lockDatabases(account);
    std::vector<std::string> made;
    for (const std::string& path : account.databases()) {
        removeUnfinished(path);
        if (!isFree(path)) continue;
        makeDatabase(path, key);
        made.push_back(path);
    }
    return made;
}

void makeAccountReady(const Account& account, const std::string& key) {
    for (const std::string& path : makeMissingParts(account, key))
        printNew("Made", path, key);
}

void tellWhatIsMissing(const Account& account, const std::string& key) {
    for (const std::string& path : account.databases()) {
        if (isFree(path)) printNew("Would make", path, key);
    }
}

}  // namespace app
