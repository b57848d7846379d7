// Why a database does not open, or takes nothing, in words that tell a person what to do.
#pragma once

#include <string>

#include "app/base/failure.h"
#include "host/dbUtils.h"

namespace app {

/// What a database file is before anybody opens it with a key.
enum class FileLook {
    missing,
    unreadable,  ///< it may not be read, or is no regular file
    empty,
    plain,      ///< begins as an unencrypted database does
    encrypted,  ///< whole pages of what looks like noise
    foreign     ///< neither of them: no database
};
[[nodiscard]] FileLook lookAt(const std::string& databasePath);

/// The words for a database that `db` has just failed to open.
[[nodiscard]] FailureWords wordsForClosed(const imsdk::dbUtils& db, const std::string& path, bool withKey);

/// Takes the write lock of the open database and lets it go again: what cannot be written to should be known before the
/// first file is. Throws a Failure that says why it cannot.
void requireWritable(imsdk::dbUtils& db, const std::string& path);

}  // namespace app
