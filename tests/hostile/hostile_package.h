// A package with one harmless message behind whatever a test puts into it, and a private file beside it.
#pragma once

#include <filesystem>
#include <string>

#include "tests/support/snapshot.h"
#include "tests/transfer/package_import/import_fixture.h"

namespace test {

class HostilePackage : public ImportFixture {
protected:
    HostilePackage() { dir_.write("private/secret.txt", "private bytes"); }

    /// Reads the package and writes it into the main database. The harmless message, in the file behind the hostile
    /// ones, arrives; nothing outside the account changes; the database stays whole.
    void importWholePackage() {
        writeFile(harmlessFile_, fileJson(dayJson(messageJson(5, 1, R"(,"message":"harmless")"))));
        const std::string before = surroundings();
        transfer_.msgMap.clear();
        EXPECT_EQ(0U, transfer_.rdMsgFromFile());
        EXPECT_EQ(0U, transfer_.wtMsgToDB());
        EXPECT_EQ(before, surroundings());
        EXPECT_EQ("harmless", mainRows("select body from im_msg_5"));
        EXPECT_EQ("ok", mainRows("PRAGMA integrity_check"));
    }

    /// Everything but the account.
    std::string surroundings() const { return snapshotOf(dir_.path(), {"account"}); }

    /// No file of the account holds what only the private one says.
    void expectNothingPrivateInTheAccount() const { expectNowhereIn(dir_.at("account"), "private bytes"); }

    int harmlessFile_ = 1;
};

}  // namespace test
