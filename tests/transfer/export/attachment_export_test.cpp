// Attachments on their way into the package.
#include <sys/stat.h>

#include <chrono>

#include "host/tools.h"
#include "tests/transfer/export/account_fixture.h"

namespace {

class AttachmentExport : public test::AccountTest {
protected:
    AttachmentExport() { transfer.imFileDir = dir.makeDir("package") + "/"; }

    /// Exports, and gives what is in the package then.
    std::string exportAll() {
        EXPECT_EQ(1, transfer.exportFile());
        return exported();
    }
    std::string exportImages(const std::vector<std::string>& names) {
        transfer.imagePaths = names;
        return exportAll();
    }
    std::string exported() const { return test::treeOf(dir.at("package")); }
    std::string exportedFile(const std::string& name) const { return test::readFile(dir.at("package/" + name)); }
};

class HostileAttachment : public AttachmentExport {};

TEST_F(AttachmentExport, OfNothingReportsZeroOfZero) {
    EXPECT_EQ(1, transfer.exportFile());
    EXPECT_EQ(std::vector<std::string>{"2 0 0/0"}, listener.heard);
    EXPECT_EQ(0, transfer.attachmentTotal);
    EXPECT_EQ("", exported());
}

TEST_F(AttachmentExport, TakesTheFileByItsNameAndKeepsItsRelativePath) {
    addAttachment("image/pic.jpg", "picture");
    EXPECT_EQ("sub/ sub/deep/ sub/deep/pic.jpg", exportImages({"sub/deep/pic.jpg"}));
    EXPECT_EQ("picture", exportedFile("sub/deep/pic.jpg"));
}

TEST_F(AttachmentExport, TakesEachKindFromItsOwnFolder) {
    for (const char* kind : {"audio", "file", "image"})
        addAttachment(std::string(kind) + "/x", kind);
    transfer.audioPaths = {"a/x"};
    transfer.filePaths = {"f/x"};
    exportImages({"i/x"});
    EXPECT_EQ("audio", exportedFile("a/x"));
    EXPECT_EQ("file", exportedFile("f/x"));
    EXPECT_EQ("image", exportedFile("i/x"));
    EXPECT_EQ(3, transfer.attachmentTotal);
    EXPECT_EQ(3, transfer.report.attachmentsDone);
}

TEST_F(AttachmentExport, LetsTheLaterKindWinTheSamePath) {
    addAttachment("audio/x", "audio");
    addAttachment("file/x", "file");
    addAttachment("image/x", "image");
    transfer.imagePaths = transfer.audioPaths = {"sub/x"};
    EXPECT_EQ(1, transfer.exportFile());
    EXPECT_EQ("image", exportedFile("sub/x"));
    transfer.imagePaths.clear();
    transfer.filePaths = {"sub/x"};
    EXPECT_EQ(1, transfer.exportFile());
    EXPECT_EQ("file", exportedFile("sub/x"));
}

TEST_F(AttachmentExport, SkipsAMissingFileAndGoesOn) {
    addAttachment("image/b.jpg", "b");
    EXPECT_EQ("sub/ sub/b.jpg", exportImages({"sub/a.jpg", "sub/b.jpg"}));
    EXPECT_EQ("2 100 2/2", listener.heard.back());
    EXPECT_EQ("sub/a.jpg: the attachment is missing", skipped());
    EXPECT_EQ(1, transfer.report.attachmentsMissing);
    EXPECT_EQ(1, transfer.report.attachmentsDone);
}

TEST_F(AttachmentExport, MakesNoFolderForAMissingFile) {
    EXPECT_EQ("", exportImages({"sub/a.jpg"}));
}

TEST_F(AttachmentExport, OfABareNameMakesAFolderOfItAndFails) {
    addAttachment("image/pic.jpg", "picture");
    EXPECT_EQ("pic.jpg/", exportImages({"pic.jpg"}));
    EXPECT_EQ(1, transfer.report.attachmentsFailed);
    EXPECT_EQ("2 100 1/1", listener.heard.back());
}

TEST_F(AttachmentExport, CopiesAFileThatIsNamedTwiceBothTimes) {
    addAttachment("image/pic.jpg", "picture");
    EXPECT_EQ("a/ a/pic.jpg b/ b/pic.jpg", exportImages({"a/pic.jpg", "b/pic.jpg", "a/pic.jpg"}));
    EXPECT_EQ(3, transfer.report.attachmentsDone);
}

TEST_F(AttachmentExport, KeepsEveryByte) {
    const std::string bytes = test::patterned(300000);
    addAttachment("file/big.bin", bytes);
    addAttachment("file/empty.bin", "");
    transfer.filePaths = {"s/big.bin", "s/empty.bin"};
    EXPECT_EQ(1, transfer.exportFile());
    EXPECT_EQ(bytes, exportedFile("s/big.bin"));
    EXPECT_EQ("", exportedFile("s/empty.bin"));
}

TEST_F(AttachmentExport, AppendsAddressesOfTheWebToItsFolder) {
    addAttachment("image/a.jpg", "picture");
    EXPECT_EQ("https:/ https:/host/ https:/host/x/ https:/host/x/a.jpg", exportImages({"https://host/x/a.jpg"}));
}

TEST_F(AttachmentExport, AppendsPathsThatLookAbsoluteToItsFolder) {
    addAttachment("image/a.jpg", "a");
    addAttachment("image/b.jpg", "b");
    EXPECT_EQ("b.jpg etc/ etc/x/ etc/x/a.jpg", exportImages({"/etc/x/a.jpg", "/b.jpg"}));
    EXPECT_FALSE(test::exists("/etc/x/a.jpg"));
}

TEST_F(AttachmentExport, IsForItsOwnerOnly) {
    addAttachment("image/a.jpg", "picture");
    chmod(dir.at("account/image/a.jpg").c_str(), 0644);
    exportImages({"sub/a.jpg"});
    EXPECT_EQ(0600U, test::permissionsOf(dir.at("package/sub/a.jpg")));
    EXPECT_EQ(0700U, test::permissionsOf(dir.at("package/sub")));
}

TEST_F(AttachmentExport, CountsTheTotalAnewEachTime) {
    transfer.attachmentTotal = 99;
    transfer.audioPaths = {"a/x"};
    transfer.filePaths = {"a/x", "a/y"};
    EXPECT_EQ(1, transfer.exportFile());
    EXPECT_EQ(3, transfer.attachmentTotal);
    EXPECT_EQ("2 100 3/3", listener.heard.back());
}

TEST_F(AttachmentExport, MakesItsFolderWhenThatIsMissing) {
    addAttachment("image/a.jpg", "picture");
    transfer.imFileDir = dir.at("new/folder") + "/";
    exportImages({"sub/a.jpg"});
    EXPECT_EQ("picture", test::readFile(dir.at("new/folder/sub/a.jpg")));
}

TEST_F(AttachmentExport, IntoAFolderThatCannotBeMadeIsReported) {
    addAttachment("image/a.jpg", "picture");
    transfer.imFileDir = dir.path() + "/" + std::string(300, 'd') + "/";
    exportImages({"sub/a.jpg"});
    EXPECT_EQ(0, transfer.report.attachmentsDone);
    EXPECT_EQ(1, transfer.report.skippedCount);
    EXPECT_EQ("2 100 1/1", listener.heard.back());
}

// A listener that holds each report against the position it was sent from.
class PositionListener : public ProgressListener {
public:
    void onProgress(long long /*context*/, int stage, int percent, const char* text) override {
        const long long done = tools::atoint64(text);
        const long long total = tools::atoint64(text + std::string(text).find('/') + 1);
        stageOnly = stageOnly && stage == 2;
        percentRight = percentRight && percent == done * 100 / total;
        rising = rising && done > lastDone;
        lastDone = done;
        ++reports;
        if (done == total) ++finals;
    }

    bool stageOnly = true;
    bool percentRight = true;
    bool rising = true;
    long long lastDone = -1;
    long long reports = 0;
    long long finals = 0;
};

TEST_F(AttachmentExport, ReportsPositionsInBetweenAtMostEveryHalfSecondAndTheTotalOnce) {
    PositionListener positions;
    transfer.progressListener = &positions;
    transfer.audioPaths.assign(100000, "sub/none.amr");
    transfer.imagePaths.assign(100000, "sub/none.jpg");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(1, transfer.exportFile());
    const auto halfSeconds = (std::chrono::steady_clock::now() - start) / std::chrono::milliseconds(500);
    EXPECT_TRUE(positions.stageOnly && positions.percentRight && positions.rising);
    EXPECT_EQ(1, positions.finals);
    EXPECT_EQ(200000, positions.lastDone);
    EXPECT_LE(positions.reports, halfSeconds + 1);
    EXPECT_GE(positions.reports, halfSeconds >= 2 ? 2 : 1);
}

// --- Names and files that lead elsewhere

TEST_F(HostileAttachment, WithAStepUpwardIsRefused) {
    addAttachment("image/a.jpg", "picture");
    EXPECT_EQ("", exportImages({"../a.jpg", "x/../../a.jpg", "x/../a.jpg"}));
    EXPECT_EQ("account package", test::listing(dir.path()));
    EXPECT_EQ(3, transfer.report.attachmentsRefused);
    EXPECT_EQ("2 100 3/3", listener.heard.back());
}

TEST_F(HostileAttachment, NamedByDotsOrByNothingIsRefused) {
    dir.makeDir("account/image");
    dir.write("account/db/secret", "secret");
    EXPECT_EQ("", exportImages({"sub/..", "sub/.", "sub/", "/", "", ".."}));
    EXPECT_EQ(6, transfer.report.attachmentsRefused);
}

TEST_F(HostileAttachment, WithAStepUpwardInItsFileNameIsRefused) {
    dir.write("account/secret", "secret");
    addAttachment("file/secret", "own");
    EXPECT_EQ(1, transfer.parseUrl(R"({"fileName":"../secret","mediaUrl":"s/m"})", 6));
    EXPECT_EQ("", exportAll());
    EXPECT_EQ(1, transfer.report.attachmentsRefused);
}

TEST_F(HostileAttachment, WithDotsInsideItsNameIsAnOrdinaryOne) {
    addAttachment("image/..a..jpg", "picture");
    exportImages({"s../..a..jpg"});
    EXPECT_EQ("picture", exportedFile("s../..a..jpg"));
}

TEST_F(HostileAttachment, ThatIsALinkIsNotThere) {
    dir.write("secret", "secret");
    addAttachment("image/own.jpg", "own");
    std::filesystem::create_symlink(dir.at("secret"), dir.at("account/image/out.jpg"));
    std::filesystem::create_symlink("own.jpg", dir.at("account/image/in.jpg"));
    std::filesystem::create_symlink("nowhere", dir.at("account/image/none.jpg"));
    EXPECT_EQ("", exportImages({"s/out.jpg", "s/in.jpg", "s/none.jpg"}));
    EXPECT_EQ(0, transfer.report.attachmentsDone);
    EXPECT_EQ(3, transfer.report.skippedCount);
}

TEST_F(HostileAttachment, ThatIsAFifoIsNotThereAndHoldsNothingUp) {
    dir.makeDir("account/image");
    ASSERT_EQ(0, mkfifo(dir.at("account/image/pipe.jpg").c_str(), 0600));
    EXPECT_EQ("", exportImages({"s/pipe.jpg"}));
    EXPECT_EQ(1, transfer.report.skippedCount);
}

TEST_F(HostileAttachment, ThatIsAFolderIsNotThere) {
    dir.write("account/image/a.jpg/inside", "x");
    EXPECT_EQ("", exportImages({"s/a.jpg"}));
    EXPECT_EQ(0, transfer.report.attachmentsDone);
}

TEST_F(HostileAttachment, IsNotWrittenThroughALinkInThePackage) {
    addAttachment("image/a.jpg", "picture");
    dir.makeDir("outside");
    std::filesystem::create_symlink(dir.at("outside"), dir.at("package/sub"));
    exportImages({"sub/a.jpg"});
    EXPECT_EQ("", test::listing(dir.at("outside")));
    EXPECT_EQ(0, transfer.report.attachmentsDone);
}

TEST_F(HostileAttachment, ReplacesALinkUnderItsOwnNameInThePackage) {
    addAttachment("image/a.jpg", "picture");
    dir.write("outside", "untouched");
    dir.makeDir("package/sub");
    std::filesystem::create_symlink(dir.at("outside"), dir.at("package/sub/a.jpg"));
    exportImages({"sub/a.jpg"});
    EXPECT_EQ("untouched", test::readFile(dir.at("outside")));
    EXPECT_EQ("picture", exportedFile("sub/a.jpg"));
}

TEST_F(HostileAttachment, WithANameOf300CharactersIsRefused) {
    transfer.imagePaths = {"s/" + std::string(300, 'n'), std::string(300, 'n') + "/a.jpg"};
    addAttachment("image/a.jpg", "picture");
    EXPECT_EQ("", exportAll());
    EXPECT_EQ(2, transfer.report.attachmentsRefused);
}

TEST_F(HostileAttachment, WithANameOf255CharactersIsAnOrdinaryOne) {
    const std::string name(255, 'n');
    addAttachment("image/" + name, "picture");
    exportImages({"s/" + name});
    EXPECT_EQ("picture", exportedFile("s/" + name));
}

TEST_F(HostileAttachment, WithANulInItsNameIsRefused) {
    addAttachment("image/a", "picture");
    EXPECT_EQ("", exportImages({std::string("s/a\0.jpg", 8)}));
    EXPECT_EQ(1, transfer.report.attachmentsRefused);
}

TEST_F(HostileAttachment, BelowAFolderThatIsAFileFailsAlone) {
    addAttachment("image/a.jpg", "a");
    addAttachment("image/b.jpg", "b");
    EXPECT_EQ("x/ x/a.jpg y/ y/b.jpg", exportImages({"x/a.jpg", "x/a.jpg/b.jpg", "y/b.jpg"}));
    EXPECT_EQ(2, transfer.report.attachmentsDone);
    EXPECT_EQ(1, transfer.report.skippedCount);
}

TEST_F(HostileAttachment, InGreatNumbersKeepsTheReportSmall) {
    transfer.imagePaths.assign(1500, "../x");
    EXPECT_EQ(1, transfer.exportFile());
    EXPECT_EQ(1000U, transfer.report.skipped.size());
    EXPECT_EQ(1500, transfer.report.skippedCount);
}

}  // namespace
