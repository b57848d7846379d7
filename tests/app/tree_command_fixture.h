// What the tests of the tree commands share: small plain trees, a key, and the commands as verbs.
#pragma once

#include <string>
#include <vector>

#include "tests/app/fixture.h"

namespace test {

class TreeCommandTest : public CommandTest {
protected:
    // The key itself instead of a passphrase: a database opens without the slow derivation.
    static constexpr const char* kKey = "x'c0ffee0102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d'";

    TreeCommandTest();

    /// The commands, with the user and the key file filled in (unless `more` names another one). `more` goes behind.
    Arguments importArguments(const std::string& account, const std::string& from) const;
    Outcome importTree(const std::string& account, const std::string& from, const Arguments& more = {},
                       const Setting& setting = {}) const;
    Outcome encryptTree(const std::string& from, const std::string& to, const Arguments& more = {}) const;
    Outcome decryptTree(const std::string& from, const std::string& to, const Arguments& more = {}) const;

    /// Two conversations (2002 with 2 message files, 3003 with 1), a voice message, a contact, two notes and a room:
    /// three messages, six record files and one attachment.
    void makePlainTree(const std::string& plain) const;
    /// That tree, encrypted into `backup`; its plain form stays as `backup`-plain.
    void makeTree(const std::string& backup) const;
    /// Many message files of one message each, in conversations of fifty files.
    void makeBigPlainTree(const std::string& plain, int files) const;
    /// Adds files of recent contacts, each of one contact: "Contact 0" in contacts-0.ct and so on.
    void makeContactFiles(const std::string& plain, int files) const;

    std::string plainMessage(long long id, const std::string& more = R"("message": "hello")") const;
    std::string treeFolder(const std::string& backup) const { return at(backup + "/qelbackup/" + kUser); }
    /// A file of the tree in "backup".
    void putIntoTree(const std::string& name, const std::string& bytes) const {
        dir_.write(std::string("backup/qelbackup/") + kUser + "/" + name, bytes);
    }
    std::string pluginDatabase(const std::string& account) const { return at(account + "/db/plugin/kab.db"); }
    std::string otherKey() const { return at("other-key"); }

    /// Rows as queryText() gives them.
    std::string mainRows(const std::string& account, const std::string& sql, int columns = 1) const;
    std::string pluginRows(const std::string& account, const std::string& sql, int columns = 1) const;
    std::string messageIds(const std::string& account, const std::string& table) const;
    /// All rows of the main and the plugin database, and the attachments' names and bytes.
    std::string contentOf(const std::string& account) const;
    /// The relative names of all files below a folder, and these with their bytes.
    std::string namesBelow(const std::string& folder) const;
    std::string filesBelow(const std::string& folder) const;
    long long countEnding(const std::string& folder, const std::string& ending) const;

private:
    Outcome run(const std::string& command, const Arguments& more, const Arguments& last, const Setting& setting) const;
};

}  // namespace test
