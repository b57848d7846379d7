// What the tests of the commands share: a folder, small sample accounts, and the commands as verbs.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/app/program.h"
#include "tests/support/database.h"
#include "tests/support/temp_dir.h"

namespace test {

class CommandTest : public ::testing::Test {
protected:
    static constexpr const char* kUser = "1000000000000001";

    std::string at(const std::string& name) const { return dir_.at(name); }
    std::string mainDatabase(const std::string& account) const { return at(account + "/db/imsg.db"); }
    std::string messageFolder(const std::string& package) const {
        return at(package + "/qelmsg_0/messages_0/" + kUser + "/");
    }
    std::string attachmentFolder(const std::string& package) const {
        return at(package + "/qelmsg_0/qelimfiles_0/" + kUser + "/");
    }
    /// A file among the messages of "package".
    void putIntoPackage(const std::string& name, const std::string& bytes) const {
        dir_.write(std::string("package/qelmsg_0/messages_0/") + kUser + "/" + name, bytes);
    }
    bool hasPackage(const std::string& folder) const { return exists(at(folder + "/qelmsg_0")); }

    /// The commands, with the account, the user and the package filled in. `more` goes behind.
    Outcome sample(const std::string& account, const Arguments& more = {}, const Setting& setting = {}) const;
    Outcome exportFrom(const std::string& account, const std::string& to, const Arguments& more = {},
                       const Setting& setting = {}) const;
    Outcome importInto(const std::string& account, const std::string& from, const Arguments& more = {},
                       const Setting& setting = {}) const;
    /// The export of "account" into "package", typed on a terminal.
    Outcome exportOnTerminal(const std::vector<Answer>& answers = {}) const;
    Outcome inspect(const std::string& from, const Arguments& more = {}) const;
    Outcome verify(const std::string& from, const std::string& account, const Arguments& more = {}) const;

    /// A sample of 300 messages in 4 conversations over 5 days, unencrypted, with one voice, one image and one file
    /// message.
    void makeSample(const std::string& account) const;
    /// That sample, exported into `package`.
    void makePackage(const std::string& account, const std::string& package) const;
    /// An account with an empty list of recent contacts and whatever `statements` add to the main database.
    void makeAccount(const std::string& account, const std::vector<std::string>& statements) const;

    /// The statement that makes the message table of a conversation, or one of any name.
    static std::string createTable(const std::string& name);
    /// Inserts a text message of 2024-03-07. `body` is SQL: "'text'".
    static std::string insertMessage(const std::string& table, long long id, const std::string& body);

    /// The message tables of a main database, by name.
    std::vector<std::string> tablesOf(const std::string& account) const;
    /// One value out of the biggest conversation of a sample.
    std::string biggestTable(const std::string& account) const;

    TempDir dir_;

private:
    Outcome run(const Arguments& first, const Arguments& more, const Setting& setting) const;
};

/// What a command is expected to do, and what it is expected to say on the way (standard output, or standard error for
/// one that fails): each text is a part of it. Give the run for further looks at it.
Outcome expectSuccess(Outcome run, const std::vector<std::string>& says = {}, const char* file = __builtin_FILE(),
                      int line = __builtin_LINE());
Outcome expectFailure(Outcome run, const std::vector<std::string>& says = {}, const char* file = __builtin_FILE(),
                      int line = __builtin_LINE());
Outcome expectUsageError(Outcome run, const std::vector<std::string>& says = {}, const char* file = __builtin_FILE(),
                         int line = __builtin_LINE());
/// Of a check that found something: it fails, and what it found stands in its standard output.
Outcome expectFindings(Outcome run, const std::vector<std::string>& says, const char* file = __builtin_FILE(),
                       int line = __builtin_LINE());

/// Each row of the table that a command printed, by its label.
void expectRows(const Outcome& run, const std::vector<std::pair<std::string, std::string>>& rows,
                const char* file = __builtin_FILE(), int line = __builtin_LINE());

/// True when `text` has a control character other than a line feed.
bool hasControlCharacter(const std::string& text);

/// The value of the row `label` of a printed table; empty when there is none.
std::string rowOf(const std::string& output, const std::string& label);

}  // namespace test

// Checks the exit code and shows both outputs when it is another one.
#define EXPECT_EXIT_CODE(expected, run) EXPECT_EQ(expected, (run).code) << (run).all()
#define ASSERT_EXIT_CODE(expected, run) ASSERT_EQ(expected, (run).code) << (run).all()
/// The text is part of the output.
#define EXPECT_SAYS(text, output) \
    EXPECT_NE(std::string::npos, (output).find(text)) << "\"" << (text) << "\" not in:\n" << (output)
#define EXPECT_SAYS_NOT(text, output) \
    EXPECT_EQ(std::string::npos, (output).find(text)) << "\"" << (text) << "\" in:\n" << (output)
