// Copying the attachments that a message names from the package into the account.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/support/json_text.h"
#include "tests/transfer/package_import/import_fixture.h"

namespace fs = std::filesystem;

namespace test {
namespace {

constexpr int kVoice = 3;
constexpr int kImage = 5;
constexpr int kFile = 6;

std::string fileBody(const std::string& mediaUrl, const std::string& fileName) {
    return R"({"mediaUrl":)" + quoted(mediaUrl) + R"(,"fileName":)" + quoted(fileName) + "}";
}

std::string imageBody(const std::string& mediaUrl, const std::string& thumbUrl) {
    return R"({"mediaUrl":)" + quoted(mediaUrl) + R"(,"thumbUrl":)" + quoted(thumbUrl) + "}";
}

class AttachmentRestore : public ImportFixture {
protected:
    std::string account(const std::string& name) const { return readFile(dir_.at("account/" + name)); }
    bool inAccount(const std::string& name) const { return exists(dir_.at("account/" + name)); }
    void putIntoAccount(const std::string& name, const std::string& bytes) const {
        dir_.write("account/" + name, bytes);
    }
    // The package's "a/x.dat" as a file, as a voice message, and as a picture that is its own thumbnail.
    void restoreAsEveryType() {
        EXPECT_EQ(1, transfer_.importFile(fileBody("a/c", "x.dat"), kFile));
        EXPECT_EQ(1, transfer_.importFile(fileBody("a/c", "x.dat"), kVoice));
        EXPECT_EQ(1, transfer_.importFile(imageBody("a/x.dat", "a/x.dat"), kImage));
    }
    // Everything in the account's attachment folders.
    std::string restored() const {
        return listing(dir_.at("account/audio")) + "|" + listing(dir_.at("account/file")) + "|" +
               listing(dir_.at("account/image"));
    }
    const TransferReport& report() const { return transfer_.report; }
};

// --- What a body must be ---

TEST_F(AttachmentRestore, GivesZeroForABodyThatIsNoJson) {
    for (const char* body : {"hello", "", "{", R"({"mediaUrl":"a/b")"})
        EXPECT_EQ(0, transfer_.importFile(body, kFile)) << body;
    EXPECT_EQ("||", restored());
}

TEST_F(AttachmentRestore, GivesZeroForABodyThatIsNoObject) {
    for (const char* body : {"[]", "7", R"("a/b")", "null"}) {
        for (const int type : {kVoice, kImage, kFile})
            EXPECT_EQ(0, transfer_.importFile(body, type)) << body;
    }
}

TEST_F(AttachmentRestore, GivesZeroForOtherTypes) {
    writeAttachment("a/x.dat", "bytes");
    for (const int type : {0, 1, 2, 4, 7, 28, 89, -3, 2147483647})
        EXPECT_EQ(0, transfer_.importFile(fileBody("a/x.dat", "x.dat"), type)) << type;
    EXPECT_EQ("||", restored());
}

TEST_F(AttachmentRestore, CopiesNothingWhenAKeyIsMissing) {
    writeAttachment("a/x.dat", "bytes");
    for (const char* body : {"{}", R"({"mediaUrl":"a/x.dat"})", R"({"fileName":"x.dat"})", R"({"thumbUrl":"a/x.dat"})",
                             R"({"mediaUrl":5,"fileName":"x.dat","thumbUrl":"a/x.dat"})",
                             R"({"mediaUrl":"a/x.dat","fileName":null,"thumbUrl":["a/x.dat"]})"}) {
        for (const int type : {kVoice, kImage, kFile})
            EXPECT_EQ(1, transfer_.importFile(body, type)) << body;
    }
    EXPECT_EQ("||", restored());
}

TEST_F(AttachmentRestore, NeedsTheKeysOfItsOwnType) {
    writeAttachment("a/x.dat", "bytes");
    EXPECT_EQ(1, transfer_.importFile(imageBody("a/x.dat", "a/x.dat"), kFile));
    EXPECT_EQ(1, transfer_.importFile(fileBody("a/x.dat", "x.dat"), kImage));
    EXPECT_EQ("||", restored());
}

// --- Files ---

TEST_F(AttachmentRestore, TakesAFileFromTheFolderOfItsAddress) {
    writeAttachment("a/b/x.dat", "bytes");
    writeAttachment("a/b/c.dat", "other");
    EXPECT_EQ(1, transfer_.importFile(fileBody("a/b/c.dat", "x.dat"), kFile));
    EXPECT_EQ("|x.dat|", restored());
    EXPECT_EQ("bytes", account("file/x.dat"));
    EXPECT_EQ(1, report().attachmentsDone);
}

TEST_F(AttachmentRestore, TakesAnAddressWithoutSlashForTheFolder) {
    writeAttachment("media/x.dat", "bytes");
    EXPECT_EQ(1, transfer_.importFile(fileBody("media", "x.dat"), kFile));
    EXPECT_EQ("bytes", account("file/x.dat"));
}

TEST_F(AttachmentRestore, TakesAnEmptyAddressForThePackageItself) {
    writeAttachment("x.dat", "bytes");
    EXPECT_EQ(1, transfer_.importFile(fileBody("", "x.dat"), kFile));
    EXPECT_EQ("bytes", account("file/x.dat"));
}

TEST_F(AttachmentRestore, AppendsAddressesThatLookAbsoluteOrLikeAUrl) {
    writeAttachment("abs/x.dat", "one");
    writeAttachment("http:/host/p/y.dat", "two");
    EXPECT_EQ(1, transfer_.importFile(fileBody("/abs/c", "x.dat"), kFile));
    EXPECT_EQ(1, transfer_.importFile(fileBody("http://host/p/c?q=1", "y.dat"), kFile));
    EXPECT_EQ("one", account("file/x.dat"));
    EXPECT_EQ("two", account("file/y.dat"));
}

TEST_F(AttachmentRestore, NeverOverwritesAFile) {
    writeAttachment("a/x.dat", "new");
    putIntoAccount("file/x.dat", "old");
    EXPECT_EQ(1, transfer_.importFile(fileBody("a/c", "x.dat"), kFile));
    EXPECT_EQ("old", account("file/x.dat"));
    EXPECT_EQ(1, report().attachmentsPresent);
}

TEST_F(AttachmentRestore, PutsAFileWithFolderIntoThatFolderWhenItIsThere) {
    writeAttachment("a/sub/x.dat", "bytes");
    EXPECT_EQ(1, transfer_.importFile(fileBody("a/c", "sub/x.dat"), kFile));
    EXPECT_EQ("||", restored());
    dir_.makeDir("account/file/sub");
    EXPECT_EQ(1, transfer_.importFile(fileBody("a/c", "sub/x.dat"), kFile));
    EXPECT_EQ("bytes", account("file/sub/x.dat"));
}

TEST_F(AttachmentRestore, KeepsBytesAndSizesOfAFile) {
    const std::string bytes = patterned(300'000);
    writeAttachment("a/x.dat", bytes);
    writeAttachment("a/empty.dat", "");
    transfer_.importFile(fileBody("a/c", "x.dat"), kFile);
    transfer_.importFile(fileBody("a/c", "empty.dat"), kFile);
    EXPECT_EQ(bytes, account("file/x.dat"));
    EXPECT_EQ("", account("file/empty.dat"));
    EXPECT_EQ(0600U, permissionsOf(dir_.at("account/file/x.dat")));
}

// --- Voice ---

TEST_F(AttachmentRestore, TakesAVoiceFileFromTheFolderOfItsAddress) {
    writeAttachment("a/b/v.amr", "sound");
    EXPECT_EQ(1, transfer_.importFile(fileBody("a/b/c", "v.amr"), kVoice));
    EXPECT_EQ("v.amr||", restored());
    EXPECT_EQ("sound", account("audio/v.amr"));
}

TEST_F(AttachmentRestore, CopiesAVoiceFileAgain) {
    writeAttachment("a/v.amr", "new");
    putIntoAccount("audio/v.amr", "old");
    EXPECT_EQ(1, transfer_.importFile(fileBody("a/c", "v.amr"), kVoice));
    EXPECT_EQ("new", account("audio/v.amr"));
}

TEST_F(AttachmentRestore, KeepsAPresentVoiceFileWhenThePackageHasNone) {
    putIntoAccount("audio/v.amr", "old");
    EXPECT_EQ(1, transfer_.importFile(fileBody("a/c", "v.amr"), kVoice));
    EXPECT_EQ("old", account("audio/v.amr"));
    EXPECT_EQ(1, report().attachmentsMissing);
}

// --- Images ---

TEST_F(AttachmentRestore, FlattensThePathsOfAnImage) {
    writeAttachment("a/b/pic.jpg", "picture");
    writeAttachment("t/thumb.jpg", "thumbnail");
    EXPECT_EQ(1, transfer_.importFile(imageBody("a/b/pic.jpg", "t/thumb.jpg"), kImage));
    EXPECT_EQ("||pic.jpg thumb.jpg", restored());
    EXPECT_EQ("picture", account("image/pic.jpg"));
    EXPECT_EQ("thumbnail", account("image/thumb.jpg"));
}

TEST_F(AttachmentRestore, CopiesOnlyTheThumbnailWhenThePictureIsThere) {
    writeAttachment("a/pic.jpg", "new");
    writeAttachment("a/thumb.jpg", "thumbnail");
    putIntoAccount("image/pic.jpg", "old");
    EXPECT_EQ(1, transfer_.importFile(imageBody("a/pic.jpg", "a/thumb.jpg"), kImage));
    EXPECT_EQ("old", account("image/pic.jpg"));
    EXPECT_EQ("thumbnail", account("image/thumb.jpg"));
}

TEST_F(AttachmentRestore, CopiesOnlyThePictureWhenTheThumbnailIsThere) {
    writeAttachment("a/pic.jpg", "picture");
    writeAttachment("a/thumb.jpg", "new");
    putIntoAccount("image/thumb.jpg", "old");
    EXPECT_EQ(1, transfer_.importFile(imageBody("a/pic.jpg", "a/thumb.jpg"), kImage));
    EXPECT_EQ("picture", account("image/pic.jpg"));
    EXPECT_EQ("old", account("image/thumb.jpg"));
}

TEST_F(AttachmentRestore, CopiesTheThumbnailOfAPictureThatIsMissing) {
    writeAttachment("a/thumb.jpg", "thumbnail");
    EXPECT_EQ(1, transfer_.importFile(imageBody("a/pic.jpg", "a/thumb.jpg"), kImage));
    EXPECT_EQ("||thumb.jpg", restored());
    EXPECT_EQ(1, report().attachmentsMissing);
    EXPECT_TRUE(reported("a/pic.jpg"));
}

TEST_F(AttachmentRestore, LetsThePictureWinOverAThumbnailOfItsName) {
    writeAttachment("a/x.jpg", "picture");
    writeAttachment("t/x.jpg", "thumbnail");
    EXPECT_EQ(1, transfer_.importFile(imageBody("a/x.jpg", "t/x.jpg"), kImage));
    EXPECT_EQ("picture", account("image/x.jpg"));
}

TEST_F(AttachmentRestore, TakesABareImageName) {
    writeAttachment("pic.jpg", "picture");
    EXPECT_EQ(1, transfer_.importFile(imageBody("pic.jpg", "thumb.jpg"), kImage));
    EXPECT_EQ("picture", account("image/pic.jpg"));
}

TEST_F(AttachmentRestore, TakesNoImageWithoutAName) {
    writeAttachment("a/pic.jpg", "picture");
    EXPECT_EQ(1, transfer_.importFile(imageBody("", "a/"), kImage));
    EXPECT_EQ("||", restored());
}

// --- Names that fit and names that do not ---

TEST_F(AttachmentRestore, TakesNamesOf255Bytes) {
    const std::string name(255, 'n');
    writeAttachment("a/" + name, "bytes");
    transfer_.importFile(imageBody("a/" + name, "a/none"), kImage);
    transfer_.importFile(fileBody("a/c", name), kFile);
    EXPECT_EQ("|" + name + "|" + name, restored());
}

TEST_F(AttachmentRestore, TakesNoLongerNamesNorPartsOfThem) {
    const std::string longest(255, 'n');
    writeAttachment("a/" + longest, "bytes");
    for (const std::size_t length : {256U, 300U, 100'000U}) {
        const std::string name(length, 'n');
        EXPECT_EQ(1, transfer_.importFile(imageBody("a/" + name, name), kImage));
        EXPECT_EQ(1, transfer_.importFile(fileBody("a/c", name), kFile));
        EXPECT_EQ(1, transfer_.importFile(fileBody(name + "/c", "x.dat"), kVoice));
    }
    EXPECT_EQ("||", restored());
    EXPECT_EQ(0, report().attachmentsDone);
}

TEST_F(AttachmentRestore, TakesPathsOfManyFolders) {
    std::string folders;
    for (int i = 0; i < 50; ++i)
        folders += "folder/";
    writeAttachment(folders + "x.dat", "bytes");
    EXPECT_EQ(1, transfer_.importFile(fileBody(folders + "c", "x.dat"), kFile));
    EXPECT_EQ("bytes", account("file/x.dat"));
}

// --- Names that lead elsewhere ---

TEST_F(AttachmentRestore, ReadsNothingOutsideThePackage) {
    dir_.write("secret.dat", "secret");
    dir_.write("backup/qelmsg_0/secret.dat", "secret");
    writeAttachment("a/inside.dat", "bytes");
    for (const char* url :
         {"../../../../secret.dat", "a/../../secret.dat", "..", "../c", "a/..", "/../../secret.dat"}) {
        EXPECT_EQ(1, transfer_.importFile(fileBody(url, "secret.dat"), kFile)) << url;
        EXPECT_EQ(1, transfer_.importFile(fileBody(url, "secret.dat"), kVoice)) << url;
        EXPECT_EQ(1, transfer_.importFile(imageBody(url, url), kImage)) << url;
    }
    EXPECT_EQ("||", restored());
}

TEST_F(AttachmentRestore, ReadsNothingBehindADoubleDotThatStaysInside) {
    writeAttachment("a/x.dat", "bytes");
    writeAttachment("b/y.dat", "bytes");
    EXPECT_EQ(1, transfer_.importFile(fileBody("b/../a/c", "x.dat"), kFile));
    EXPECT_EQ("||", restored());
    EXPECT_EQ(1, report().attachmentsRefused);
}

TEST_F(AttachmentRestore, WritesNothingOutsideTheAccountsFolder) {
    writeAttachment("a/x.dat", "bytes");
    writeAttachment("x.dat", "bytes");
    for (const char* name : {"../x.dat", "../../x.dat", "../db/x.dat", "..", ".", "", "/", "sub/../../x.dat"}) {
        EXPECT_EQ(1, transfer_.importFile(fileBody("a/c", name), kFile)) << name;
        EXPECT_EQ(1, transfer_.importFile(fileBody("a/c", name), kVoice)) << name;
    }
    EXPECT_EQ("||", restored());
    EXPECT_EQ("audio db file image", listing(dir_.at("account")));
    EXPECT_EQ("account backup", listing(dir_.path()));
}

TEST_F(AttachmentRestore, TakesNamesThatOnlyBeginWithDots) {
    writeAttachment("a../..x.dat", "bytes");
    EXPECT_EQ(1, transfer_.importFile(fileBody("a../c", "..x.dat"), kFile));
    EXPECT_EQ("bytes", account("file/..x.dat"));
}

TEST_F(AttachmentRestore, TakesNoSymbolicLinkFromThePackage) {
    const std::string secret = dir_.write("secret.dat", "secret");
    writeAttachment("a/real.dat", "bytes");
    fs::create_symlink(secret, dir_.at(attachmentsFolder_ + "a/x.dat"));
    fs::create_symlink("real.dat", dir_.at(attachmentsFolder_ + "a/y.dat"));
    for (const char* name : {"x.dat", "y.dat"}) {
        transfer_.importFile(fileBody("a/c", name), kFile);
        transfer_.importFile(fileBody("a/c", name), kVoice);
        transfer_.importFile(imageBody(std::string("a/") + name, "none"), kImage);
    }
    EXPECT_EQ("||", restored());
}

TEST_F(AttachmentRestore, FollowsNoLinkedFolderInThePackage) {
    dir_.write("elsewhere/x.dat", "secret");
    fs::create_directory_symlink(dir_.at("elsewhere"), dir_.at(attachmentsFolder_ + "a"));
    transfer_.importFile(fileBody("a/c", "x.dat"), kFile);
    transfer_.importFile(imageBody("a/x.dat", "a/x.dat"), kImage);
    EXPECT_EQ("||", restored());
}

TEST_F(AttachmentRestore, TakesNeitherDirectoriesNorFifos) {
    dir_.makeDir(attachmentsFolder_ + "a/x.dat");
    ASSERT_EQ(0, mkfifo(dir_.at(attachmentsFolder_ + "a/y.dat").c_str(), 0600));
    for (const char* name : {"x.dat", "y.dat"}) {
        EXPECT_EQ(1, transfer_.importFile(fileBody("a/c", name), kFile));
        EXPECT_EQ(1, transfer_.importFile(fileBody("a/c", name), kVoice));
    }
    EXPECT_EQ("||", restored());
}

// --- What stands at the target ---

TEST_F(AttachmentRestore, WritesNothingThroughADanglingLink) {
    writeAttachment("a/x.dat", "bytes");
    for (const char* folder : {"file", "image", "audio"})
        fs::create_symlink(dir_.at("outside.dat"), dir_.at(std::string("account/") + folder + "/x.dat"));
    restoreAsEveryType();
    EXPECT_FALSE(exists(dir_.at("outside.dat")));
}

TEST_F(AttachmentRestore, ReplacesALinkInsteadOfWritingAVoiceFileThroughIt) {
    writeAttachment("a/v.amr", "new");
    const std::string outside = dir_.write("outside.amr", "private");
    fs::create_symlink(outside, dir_.at("account/audio/v.amr"));
    EXPECT_EQ(1, transfer_.importFile(fileBody("a/c", "v.amr"), kVoice));
    EXPECT_EQ("private", readFile(outside));
    EXPECT_EQ("new", account("audio/v.amr"));
}

TEST_F(AttachmentRestore, LeavesADirectoryOfTheNameAlone) {
    writeAttachment("a/x.dat", "bytes");
    for (const char* folder : {"account/file/x.dat", "account/audio/x.dat", "account/image/x.dat"})
        dir_.makeDir(folder);
    restoreAsEveryType();
    EXPECT_EQ("x.dat|x.dat|x.dat", restored());
    EXPECT_EQ("", listing(dir_.at("account/audio/x.dat")));
}

TEST_F(AttachmentRestore, FailsQuietlyWithoutTheAccountsFolders) {
    writeAttachment("a/x.dat", "bytes");
    for (const char* folder : {"account/file", "account/audio", "account/image"})
        fs::remove_all(dir_.at(folder));
    restoreAsEveryType();
    EXPECT_EQ("db", listing(dir_.at("account")));
    EXPECT_EQ(4, report().attachmentsFailed);
}

TEST_F(AttachmentRestore, LeavesAFileInPlaceOfAnAccountsFolderAlone) {
    writeAttachment("a/x.dat", "bytes");
    for (const char* folder : {"file", "audio", "image"}) {
        fs::remove_all(dir_.at(std::string("account/") + folder));
        putIntoAccount(folder, "not a folder");
    }
    restoreAsEveryType();
    EXPECT_EQ(0, report().attachmentsDone);
    for (const char* folder : {"file", "audio", "image"})
        EXPECT_EQ("not a folder", account(folder));
}

TEST_F(AttachmentRestore, ReachesTheAccountsFoldersThroughLinksOfTheUser) {
    writeAttachment("a/x.dat", "bytes");
    fs::remove_all(dir_.at("account/file"));
    dir_.makeDir("elsewhere");
    fs::create_directory_symlink(dir_.at("elsewhere"), dir_.at("account/file"));
    EXPECT_EQ(1, transfer_.importFile(fileBody("a/c", "x.dat"), kFile));
    EXPECT_EQ("bytes", readFile(dir_.at("elsewhere/x.dat")));
}

TEST_F(AttachmentRestore, LeavesNoTemporaryFileBehind) {
    writeAttachment("a/x.dat", "bytes");
    dir_.makeDir("account/audio/x.dat");
    transfer_.importFile(fileBody("a/c", "x.dat"), kVoice);
    transfer_.importFile(fileBody("a/c", "x.dat"), kFile);
    EXPECT_EQ("x.dat|x.dat|", restored());
}

// --- Within the reading of a package ---

TEST_F(AttachmentRestore, IsPartOfReadingAPackage) {
    writeAttachment("a/x.dat", "bytes");
    const std::string more = R"(,"messageType":6,"message":)" + quoted(fileBody("a/c", "x.dat"));
    EXPECT_EQ(fileBody("a/c", "x.dat"), readOnly(fileJson(dayJson(messageJson(5, 1, more)))).body);
    EXPECT_EQ("|x.dat|", restored());
}

TEST_F(AttachmentRestore, LeavesTheMessageWhenItsAttachmentIsMissing) {
    const std::string more = R"(,"messageType":3,"message":)" + quoted(fileBody("a/c", "v.amr"));
    EXPECT_EQ(1, readOnly(fileJson(dayJson(messageJson(5, 1, more)))).msgID);
    EXPECT_EQ(1, report().attachmentsMissing);
}

TEST_F(AttachmentRestore, LooksAtNoBodyOfATextMessage) {
    writeAttachment("a/x.dat", "bytes");
    const std::string more = R"(,"messageType":2,"message":)" + quoted(fileBody("a/c", "x.dat"));
    EXPECT_EQ(1, readOnly(fileJson(dayJson(messageJson(5, 1, more)))).msgID);
    EXPECT_EQ("||", restored());
}

}  // namespace
}  // namespace test
