#include "app/account/closed_database.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>

#include "app/account/key_options.h"
#include "host/files/file_handle.h"
#include "host/tools.h"
#include "transfer/error_codes.h"

namespace app {
namespace {

// The header of an SQLite database, as its file format documentation lays it out.
constexpr std::size_t kHeaderSize = 100;
constexpr std::size_t kWriteVersion = 18;
constexpr std::size_t kReadVersion = 19;
constexpr std::size_t kSchemaFormat = 47;  // the lowest byte of four
constexpr unsigned char kNewestVersion = 2;
constexpr unsigned char kNewestSchemaFormat = 4;
constexpr off_t kSmallestPage = 512;

using Header = std::array<unsigned char, kHeaderSize>;

// The beginning of a file; what lies behind its end reads as zeros.
struct Beginning {
    bool exists = false;
    bool readable = false;
    off_t size = 0;
    Header header{};
};

Beginning beginningOf(const std::string& path) {
    Beginning beginning;
    beginning.exists = tools::fileExist(path.c_str());
    const tools::detail::FileHandle file = tools::detail::openRegularFile(AT_FDCWD, path.c_str(), true);
    struct stat status {};
    if (!file.valid() || fstat(file.get(), &status) != 0) return beginning;
    beginning.size = status.st_size;
    beginning.readable = pread(file.get(), beginning.header.data(), beginning.header.size(), 0) >= 0;
    return beginning;
}

bool isPlain(const Header& header) {
    constexpr std::array<unsigned char, 16> kMagic = {'S', 'Q', 'L', 'i', 't', 'e', ' ', 'f',
                                                      'o', 'r', 'm', 'a', 't', ' ', '3', '\0'};
    return std::equal(kMagic.begin(), kMagic.end(), header.begin());
}

// Encryption gives every byte value alike; in a text of a hundred bytes none of the upper half of them would be chance.
bool isText(const Header& header) {
    return std::all_of(header.begin(), header.end(), [](unsigned char byte) { return byte < 0x80 && byte != 0; });
}

// An encrypted header says nothing about its version.
bool isNewer(const Header& header) {
    if (!isPlain(header)) return false;
    return header[kReadVersion] > kNewestVersion || header[kWriteVersion] > kNewestVersion ||
           header[kSchemaFormat] > kNewestSchemaFormat;
}

FileLook lookOf(const Beginning& beginning) {
    if (!beginning.exists) return FileLook::missing;
    if (!beginning.readable) return FileLook::unreadable;
    if (beginning.size == 0) return FileLook::empty;
    if (isPlain(beginning.header)) return FileLook::plain;
    const bool wholePages = beginning.size % kSmallestPage == 0;
    return wholePages && !isText(beginning.header) ? FileLook::encrypted : FileLook::foreign;
}

struct Advice {
    std::string reason;
    std::string remedy;
};

Advice adviceForLocked() {
    return {"another program holds it", "close the client, then run this again"};
}

Advice adviceForNewer() {
    return {"a newer version of the database engine wrote it", "use a newer version of chat-transfer"};
}

Advice adviceForEncrypted(bool withKey) {
    if (withKey) return {"the key does not fit, or the beginning of the file is damaged", "check the key"};
    return {"it is encrypted, and no key was given", std::string("give the key with ") + kWaysToGiveAKey};
}

std::optional<Advice> adviceForClosed(const imsdk::dbUtils& db, const std::string& path, bool withKey) {
    const Beginning beginning = beginningOf(path);
    const FileLook look = lookOf(beginning);
    if (look == FileLook::missing)
        return Advice{"there is no such file",
                      "give with --account the folder that holds db/imsg.db and db/backimsg.db"};
    if (look == FileLook::unreadable)
        return Advice{"it may not be read", "check that it is a file, and its permissions"};
    if (db.openFailure() == imsdk::OpenFailure::locked) return adviceForLocked();
    if (look == FileLook::foreign)
        return Advice{"it is no database", "check --account; put the right file in its place, or a copy of it"};
    if (look == FileLook::encrypted) return adviceForEncrypted(withKey);
    if (look != FileLook::plain) return std::nullopt;
    if (withKey)
        return Advice{"it is not encrypted, but a key was given",
                      "leave out --key-file and --ask-key, and unset CHAT_TRANSFER_KEY"};
    if (isNewer(beginning.header)) return adviceForNewer();
    if (db.openFailure() == imsdk::OpenFailure::other) return std::nullopt;
    return Advice{"it is damaged", "put a copy in its place; \"sqlite3 FILE .recover\" saves what can still be read"};
}

// With the rights that this process acts with.
bool mayWrite(const std::string& path) {
    return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

bool mayWriteIn(const std::string& path) {
    return mayWrite(std::filesystem::path(path).parent_path().string());
}

// `refused`: whether the database has just refused the write lock. None when the database can be written to.
std::optional<Advice> adviceForUnwritable(const imsdk::dbUtils& db, const std::string& path, bool refused) {
    const bool newer = isNewer(beginningOf(path).header);
    const bool mayAddJournal = mayWriteIn(path);
    if (!refused && mayAddJournal && !newer) return std::nullopt;
    if (!mayWrite(path) || !mayAddJournal)
        return Advice{"it, or the folder that it is in, may not be written to", "check the permissions of both"};
    if (newer) return adviceForNewer();
    if (db.lastFailureWasLock()) return adviceForLocked();
    return Advice{"", "check that the disk is not full"};  // the reason is the database's own
}

}  // namespace

FileLook lookAt(const std::string& databasePath) {
    return lookOf(beginningOf(databasePath));
}

FailureWords wordsForClosed(const imsdk::dbUtils& db, const std::string& path, bool withKey) {
    FailureWords words{chattransfer::kDatabaseFailed, "The database does not open", path, db.lastError(), ""};
    if (const auto advice = adviceForClosed(db, path, withKey)) {
        words.reason = advice->reason;
        words.remedy = advice->remedy;
    }
    return words;
}

void requireWritable(imsdk::dbUtils& db, const std::string& path) {
    db.beginTransaction();
    const std::string error = db.lastError();
    const auto advice = adviceForUnwritable(db, path, db.transactionFailed());
    db.endTransaction();
    if (!advice) return;
    throw Failure({chattransfer::kDatabaseFailed, "The database cannot be written to; nothing was changed", path,
                   !advice->reason.empty() ? advice->reason : error, advice->remedy});
}

}  // namespace app
