// A backup package, an account to import it into, and a transfer object set up for both.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/codes.h"
#include "tests/support/database.h"
#include "tests/support/listed.h"
#include "tests/support/listener.h"
#include "tests/support/posix_helpers.h"
#include "tests/support/records.h"
#include "tests/support/temp_dir.h"
#include "transfer/dbTrans.h"

namespace test {

// JSON texts of the package format. `more` is put behind the keys that are there anyway and begins with a comma.
std::string messageJson(long long conversation, long long id, const std::string& more = "");
/// A day object of 2019-03-07.
std::string dayJson(const std::string& messages, const std::string& more = "");
/// A message file or recent-contact file of version "1.0".
std::string fileJson(const std::string& days);
std::string contactsJson(const std::string& contacts);
/// A file of one day with one message.
std::string smallFile(long long conversation, long long id);

imsdk::st_dbMessageBean messageOf(long long conversation, long long id, const std::string& body = "");
imsdk::st_dbReContactBean contactOf(long long targetID, long long time, int top);

/// All fields of a record in one line, for comparison.
std::string describe(const imsdk::st_dbMessageBean& record);
std::string describe(const imsdk::st_dbReContactBean& record);

/// A package without files (user "100", version "1.0") and an account with empty databases and empty attachment
/// folders.
class ImportFixture : public testing::Test {
protected:
    ImportFixture();

    // --- The package ---
    std::string messageFile(int number) const;
    void writeFile(int number, const std::string& bytes) const;
    void writeContacts(const std::string& bytes) const;
    void writeAttachment(const std::string& name, const std::string& bytes) const;

    // --- The account ---
    std::string mainPath() const { return dir_.at("account/db/imsg.db"); }
    std::string backPath() const { return dir_.at("account/db/backimsg.db"); }
    std::string mainRows(const std::string& sql, int columns = 1) const { return queryText(mainPath(), sql, columns); }
    std::string backRows(const std::string& sql, int columns = 1) const { return queryText(backPath(), sql, columns); }
    std::string idsIn(const std::string& table) const;

    // --- The import ---
    /// Puts messages without a body into msgMap.
    void collect(long long conversation, const std::vector<long long>& ids);
    /// Reads the package with a single file 0 and gives the only message in it.
    imsdk::st_dbMessageBean readOnly(const std::string& file);
    std::string collectedIds(long long conversation);
    bool reported(const std::string& what) const;

    TempDir dir_;
    RecordingListener listener_;
    dbTrans transfer_;
    const std::string messagesFolder_ = "backup/qelmsg_0/messages_0/100/";
    const std::string attachmentsFolder_ = "backup/qelmsg_0/qelimfiles_0/100/";
};

}  // namespace test
