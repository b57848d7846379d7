// A user with an account and a tree: what the tests of the tree import start from.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/codes.h"
#include "tests/support/database.h"
#include "tests/support/listener.h"
#include "tests/support/posix_helpers.h"
#include "tests/support/temp_dir.h"
#include "transfer/dbTrans.h"

namespace test {

inline constexpr const char* kVersion = "7.1";
inline constexpr long long kUser = 1001;
inline constexpr long long kPartner = 2002;

/// A message object of the conversation between kUser and kPartner, sent at the time `id`; `more` adds or repeats
/// members, for example "\"messageType\": 3".
std::string message(long long id, const std::string& more = "");
/// A message with attachments: `body` is JSON.
std::string messageWithBody(long long id, int type, const std::string& body);
/// A message file with one day.
std::string messageFile(const std::vector<std::string>& messages, const std::string& version = kVersion);
/// {"version": ..., "<key>": [...]}
std::string recordFile(const std::string& key, const std::vector<std::string>& records,
                       const std::string& version = kVersion);

/// The code that an operation gave as an int.
inline unsigned code(int result) {
    return static_cast<unsigned>(result);
}

class TreeTest : public ::testing::Test {
protected:
    TreeTest();

    /// From now on databases and files are encrypted with this key.
    void useKey(const std::string& key) { transfer.dbKey = key; }

    void makeMainDatabase() const;
    void makeBackDatabase() const;
    void makePluginDatabase() const;
    std::string mainDatabase() const { return home.at("account/db/imsg.db"); }
    std::string backDatabase() const { return home.at("account/db/backimsg.db"); }
    std::string pluginDatabase() const { return home.at("account/db/plugin/kab.db"); }
    const char* key() const { return transfer.dbKey.empty() ? nullptr : transfer.dbKey.c_str(); }

    /// Rows of a query, as queryText().
    std::string main(const std::string& sql, int columns = 1) const;
    std::string back(const std::string& sql, int columns = 1) const;
    std::string plugin(const std::string& sql, int columns = 1) const;
    void runInMain(const std::vector<std::string>& statements) const { runSql(mainDatabase(), statements, key()); }

    /// The path of `name` in the user's tree.
    std::string tree(const std::string& name) const { return home.at("backup/qelbackup/1001/" + name); }
    /// Puts a file into the tree as a walk leaves it: decrypted. Gives its path.
    std::string addDecrypted(const std::string& name, const std::string& text) const;
    /// Puts a file into the tree encrypted with the key in use. Gives its path.
    std::string addEncrypted(const std::string& name, const std::string& text) const;
    std::string addAttachment(const std::string& name, const std::string& bytes) const;
    /// Names of folders directly in the tree in the order in which the system lists them.
    std::vector<std::string> foldersInWalkOrder() const;

    std::string user(const std::string& name) const { return home.at("account/" + name); }

    /// The reason with which the report names what ends in `what`; empty when it does not.
    std::string skipReason(const std::string& what) const;

    /// Another connection gets the write lock: no transaction was left open.
    void expectWritable(const std::string& database) const;

    TempDir home;
    RecordingListener listener;
    dbTrans transfer;
};

/// Makes `path` the working directory while it lives.
class WorkingFolder {
public:
    explicit WorkingFolder(const std::string& path);
    ~WorkingFolder();
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

private:
    std::string before_;
};

}  // namespace test
