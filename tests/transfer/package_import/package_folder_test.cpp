// The folders of a package: they must be folders of the package itself.
#include <filesystem>

#include "tests/transfer/package_import/import_fixture.h"

namespace fs = std::filesystem;

namespace test {
namespace {

class PackageFolder : public ImportFixture {
protected:
    // Puts a symbolic link to a folder outside in the place of a folder of the package.
    void replaceByLink(const std::string& folder, const std::string& outside) const {
        fs::remove_all(folder);
        fs::create_directory_symlink(outside, folder);
    }
};

TEST_F(PackageFolder, ThatIsALinkForAttachmentsEndsTheImportBeforeAnythingIsRead) {
    dir_.write("private/secret.txt", "secret");
    writeFile(0, fileJson(dayJson(messageJson(
                     1, 1, R"(,"messageType":6,"message":"{\"mediaUrl\":\"./x\",\"fileName\":\"secret.txt\"}")"))));
    replaceByLink(dir_.at("backup/qelmsg_0/qelimfiles_0/100"), dir_.at("private"));
    EXPECT_EQ(chattransfer::kMissing, transfer_.rdMsgFromFile());
    EXPECT_FALSE(exists(dir_.at("account/file/secret.txt")));
    EXPECT_TRUE(transfer_.msgMap.empty());
}

TEST_F(PackageFolder, ThatIsALinkForMessagesEndsTheImport) {
    writeFile(0, smallFile(1, 1));
    fs::rename(dir_.at("backup/qelmsg_0/messages_0/100"), dir_.at("elsewhere"));
    replaceByLink(dir_.at("backup/qelmsg_0/messages_0/100"), dir_.at("elsewhere"));
    EXPECT_EQ(chattransfer::kMissing, transfer_.rdMsgFromFile());
}

TEST_F(PackageFolder, MayBeReachedThroughALinkOfTheUsersOwn) {
    writeFile(0, smallFile(1, 1));
    fs::create_directory_symlink(dir_.at("backup"), dir_.at("shortcut"));
    transfer_.backupPath = dir_.at("shortcut");
    EXPECT_EQ(chattransfer::kSuccess, transfer_.rdMsgFromFile());
    EXPECT_EQ(1U, transfer_.msgMap.size());
}

}  // namespace
}  // namespace test
