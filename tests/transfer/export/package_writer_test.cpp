// The backup package on disk: its folders, its message files, and how many messages stand in each.
#include <chrono>
#include <filesystem>
#include <new>
#include <thread>

#include "tests/transfer/export/account_fixture.h"
#include "tests/transfer/export/large_blocks.h"

namespace {

using test::AccountTest;
using test::kJsonFailed;
using test::kPackageExists;
using test::messageOn;

class PackageRoot : public AccountTest {
protected:
    /// A backupPath of exactly `size` bytes.
    std::string pathOf(std::size_t size) { return dir.at(std::string(size - dir.path().size() - 1, 'p')); }
};

class PackageWriter : public AccountTest {};
class PackedWriter : public AccountTest {};
class WholeExport : public AccountTest {};

// --- The folders

TEST_F(PackageRoot, HoldsAFolderOfMessagesAndOneOfAttachments) {
    EXPECT_EQ(1, transfer.createRootDir());
    EXPECT_EQ(dir.at("backup") + "/qelmsg_0/messages_0/77/", transfer.msgFileDir);
    EXPECT_EQ(dir.at("backup") + "/qelmsg_0/qelimfiles_0/77/", transfer.imFileDir);
    EXPECT_EQ("qelmsg_0/ qelmsg_0/messages_0/ qelmsg_0/messages_0/77/ qelmsg_0/qelimfiles_0/ qelmsg_0/qelimfiles_0/77/",
              test::treeOf(dir.at("backup")));
}

TEST_F(PackageRoot, ThatExistsIsRefusedAndLeftAlone) {
    dir.makeDir("backup/qelmsg_0");
    transfer.msgFileDir = "before";
    EXPECT_EQ(0, transfer.createRootDir());
    EXPECT_EQ("before", transfer.msgFileDir);
    EXPECT_EQ("", transfer.imFileDir);
    EXPECT_EQ("qelmsg_0/", test::treeOf(dir.at("backup")));
}

TEST_F(PackageRoot, UnderWhoseNameAFileStandsIsNotMadeAndTheFileStays) {
    dir.write("backup/qelmsg_0", "a file");
    fillDay("2019:3:7", 1);
    EXPECT_EQ(kPackageExists, transfer.wtMsgToFile());
    EXPECT_EQ("a file", test::readFile(dir.at("backup/qelmsg_0")));
    EXPECT_EQ("qelmsg_0", test::treeOf(dir.at("backup")));
}

TEST_F(PackageRoot, UnderWhoseNameALinkStandsIsRefused) {
    dir.makeDir("backup");
    std::filesystem::create_symlink(dir.at("nowhere"), dir.at("backup/qelmsg_0"));
    fillDay("2019:3:7", 1);
    EXPECT_EQ(kPackageExists, transfer.wtMsgToFile());
    EXPECT_FALSE(test::exists(dir.at("nowhere")));
}

TEST_F(PackageRoot, KeepsADoubledSlash) {
    transfer.backupPath += "/";
    EXPECT_EQ(1, transfer.createRootDir());
    EXPECT_EQ(dir.at("backup") + "//qelmsg_0/messages_0/77/", transfer.msgFileDir);
    EXPECT_TRUE(test::exists(messageFolder()));
}

TEST_F(PackageRoot, FitsABackupPathOf89Bytes) {
    transfer.backupPath = pathOf(89);
    EXPECT_EQ(0U, transfer.wtMsgToFile());
    EXPECT_EQ(transfer.backupPath + "/qelmsg_0/messages_0/77/", transfer.msgFileDir);
    EXPECT_EQ("recontact.mg", test::listing(transfer.msgFileDir));
}

TEST_F(PackageRoot, DoesNotFitABackupPathOf90Bytes) {
    transfer.backupPath = pathOf(90);
    fillDay("2019:3:7", 1);
    EXPECT_EQ(0, transfer.createRootDir());
    EXPECT_EQ(kPackageExists, transfer.wtMsgToFile());
    EXPECT_EQ(kPackageExists, transfer.wtMsgToFile2());
    EXPECT_EQ("", test::listing(dir.path()));
}

TEST_F(PackageRoot, AndAllInItIsForItsOwnerOnly) {
    fillDay("2019:3:7", 1);
    addAttachment("image/p.jpg", "bytes");
    transfer.imagePaths = {"sub/folder/p.jpg"};
    ASSERT_EQ(0U, transfer.wtMsgToFile());
    for (const auto& entry : std::filesystem::recursive_directory_iterator(dir.at("backup")))
        EXPECT_EQ(entry.is_directory() ? 0700U : 0600U, test::permissionsOf(entry.path())) << entry.path();
}

TEST_F(PackageRoot, HoldsNothingButThePackageAtTheEnd) {
    fillDay("2019:3:7", 1);
    fillDay("2019:3:8", 1);
    addAttachment("image/p.jpg", "bytes");
    transfer.imagePaths = {"sub/p.jpg", "bare.jpg", "sub/none.jpg"};
    addAttachment("image/bare.jpg", "bytes");
    ASSERT_EQ(0U, transfer.wtMsgToFile());
    EXPECT_EQ(
        "messages_0/ messages_0/77/ messages_0/77/msg_0.mg messages_0/77/msg_1.mg messages_0/77/recontact.mg "
        "qelimfiles_0/ qelimfiles_0/77/ qelimfiles_0/77/bare.jpg/ qelimfiles_0/77/sub/ qelimfiles_0/77/sub/p.jpg",
        test::treeOf(dir.at("backup/qelmsg_0")));
}

// --- One file per day

TEST_F(PackageWriter, RefusesAnExistingPackageAndWritesNothing) {
    dir.makeDir("backup/qelmsg_0");
    fillDay("2019:3:7", 1);
    EXPECT_EQ(kPackageExists, transfer.wtMsgToFile());
    EXPECT_EQ(kPackageExists, transfer.wtMsgToFile2());
    EXPECT_EQ("qelmsg_0/", test::treeOf(dir.at("backup")));
    EXPECT_TRUE(listener.heard.empty());
}

TEST_F(PackageWriter, RefusesASecondExportAndLeavesTheFirst) {
    fillDay("2019:3:7", 1);
    ASSERT_EQ(0U, transfer.wtMsgToFile());
    const std::string first = messageFile(0);
    fillDay("2019:3:7", 5);
    EXPECT_EQ(kPackageExists, transfer.wtMsgToFile());
    EXPECT_EQ(first, messageFile(0));
}

TEST_F(PackageWriter, WritesOneDayIntoEachFile) {
    fillDay("2019:3:7", 2, 1);
    fillDay("2019:3:8", 1, 10);
    EXPECT_EQ("2019-3-7[1..2] | 2019-3-8[10..10] | recontact.mg", written());
}

TEST_F(PackageWriter, ListsMessagesBeforeTheDateAndTheVersionFirst) {
    fillDay("2019:3:7", 0);
    transfer.dayMsgMap["2019:3:7"];
    EXPECT_EQ(0U, transfer.wtMsgToFile());
    EXPECT_EQ(R"({"version":"1.0","msgs":[{"msgs":[],"date":{"year":2019,"month":3,"day":7}}]})", messageFile(0));
}

TEST_F(PackageWriter, WritesAnOverflowEntryUnderItsDay) {
    fillDay("2019:3:7", 1, 1);
    fillDay("2019:3:7_1", 1, 2);
    fillDay("2019:3:7_12", 1, 3);
    EXPECT_EQ("2019-3-7[1..1] | 2019-3-7[2..2] | 2019-3-7[3..3] | recontact.mg", written());
}

TEST_F(PackageWriter, NumbersItsFilesInTheOrderOfTheKeysAsText) {
    fillDay("2019:9:9", 1);
    fillDay("2019:10:10", 1);
    EXPECT_EQ("2019-10-10[1..1] | 2019-9-9[1..1] | recontact.mg", written());
}

TEST_F(PackageWriter, TakesAKeyThatIsNoDayAsFarAsItGoes) {
    fillDay("", 1);
    fillDay("2019", 1);
    fillDay("x:-1:99999999999999999999", 1);
    EXPECT_EQ("0-0-0[1..1] | 2019-0-0[1..1] | -1-9223372036854775807-0[1..1] | recontact.mg", written());
}

TEST_F(PackageWriter, OfNoMessagesStillCopiesAttachmentsAndWritesTheContacts) {
    addAttachment("image/p.jpg", "bytes");
    transfer.imagePaths = {"sub/p.jpg"};
    EXPECT_EQ("recontact.mg", written());
    EXPECT_EQ("bytes", test::readFile(attachmentFolder() + "sub/p.jpg"));
    EXPECT_EQ(std::vector<std::string>{"2 100 1/1"}, listener.heard);
}

TEST_F(PackageWriter, LeavesTheSelectedMessagesAlone) {
    fillDay("2019:3:7", 2);
    EXPECT_EQ(0U, transfer.wtMsgToFile());
    EXPECT_EQ("2019:3:7=2", entries());
}

TEST_F(PackageWriter, EndsItsReportsWithAllDays) {
    for (const char* key : {"2019:3:7", "2019:3:8", "2019:3:9"})
        fillDay(key, 1);
    transfer.progressContext = -12345678901;
    EXPECT_EQ(0U, transfer.wtMsgToFile());
    ASSERT_GE(listener.heard.size(), 2U);
    EXPECT_EQ("1 100 3/3", listener.heard[listener.heard.size() - 2]);
    EXPECT_EQ("2 0 0/0", listener.heard.back());
    for (const long long context : listener.contexts)
        EXPECT_EQ(-12345678901, context);
}

TEST_F(PackageWriter, WorksWhenNobodyListens) {
    transfer.progressListener = nullptr;
    fillDay("2019:3:7", 1);
    EXPECT_EQ("2019-3-7[1..1] | recontact.mg", written());
}

TEST_F(PackageWriter, StoppedByItsListenerLeavesWholeFilesOnly) {
    test::StoppingListener cancel;
    transfer.progressListener = &cancel;
    for (const char* key : {"2019:3:7", "2019:3:8"})
        fillDay(key, 1);
    EXPECT_THROW(transfer.wtMsgToFile(), test::StoppedByHost);
    for (const auto& entry : std::filesystem::directory_iterator(transfer.msgFileDir)) {
        const std::string text = test::readFile(entry.path().string());
        EXPECT_NE(nullptr, tools::JsonDocument(json_parse_string(text.c_str()))) << entry.path();
    }
}

TEST_F(PackageWriter, CountsWhatItWrote) {
    fillDay("2019:3:7", 3);
    fillDay("2019:3:8", 4);
    transfer.reContacts.resize(2);
    EXPECT_EQ(0U, transfer.wtMsgToFile());
    EXPECT_EQ(2, transfer.report.messageFilesWritten);
    EXPECT_EQ(7, transfer.report.messagesWritten);
    EXPECT_EQ(2, transfer.report.contactsWritten);
    EXPECT_EQ("", skipped());
}

TEST_F(PackageWriter, WritesIntoADeepFolderAndCountsRight) {
    transfer.packageSubDir = std::string(200, 'd');
    fillDay("2019:3:7", 1);
    fillDay("2019:3:8", 1);
    EXPECT_EQ(0U, transfer.wtMsgToFile());
    EXPECT_EQ("msg_0.mg msg_1.mg recontact.mg", test::listing(transfer.msgFileDir));
    EXPECT_EQ("1 100 2/2", listener.heard[listener.heard.size() - 2]);
}

TEST_F(PackageWriter, PassesOverFilesThatCannotBeWrittenAndReportsThem) {
    transfer.packageSubDir = std::string(300, 'd');  // longer than a folder's name can be
    fillDay("2019:3:7", 1);
    fillDay("2019:3:8", 1);
    EXPECT_EQ(0U, transfer.wtMsgToFile());
    const std::string folder = transfer.msgFileDir;
    EXPECT_EQ(folder + "msg_0.mg: the message file could not be written\n" + folder +
                  "msg_1.mg: the message file could not be written\n" + folder +
                  "recontact.mg: the recent-contact file could not be written",
              skipped());
    EXPECT_EQ(0, transfer.report.messageFilesWritten);
    EXPECT_EQ(0, transfer.report.messagesWritten);
    EXPECT_EQ("1 100 2/2", listener.heard[listener.heard.size() - 2]);
}

// --- Memory that runs out

// A message whose text takes a block of memory of at least `kLarge` bytes to write.
constexpr std::size_t kLarge = 1 << 19;
imsdk::st_dbMessageBean largeMessage() {
    return messageOn(2019, 3, 9, 1, 0, std::string(2 * kLarge, 'x'));
}

template <class Work>
unsigned withoutLargeBlocks(Work work) {
    const test::LargeBlocks scarce(kLarge, [] { throw std::bad_alloc(); });
    return work();
}

TEST_F(PackageWriter, EndsWhenAFileCannotBeBuilt) {
    transfer.dayMsgMap["2019:3:9"] = {largeMessage()};
    addAttachment("image/p.jpg", "bytes");
    transfer.imagePaths = {"sub/p.jpg"};
    EXPECT_EQ(kJsonFailed, withoutLargeBlocks([this] { return transfer.wtMsgToFile(); }));
    EXPECT_EQ("", test::listing(messageFolder()));
    EXPECT_EQ("", test::listing(attachmentFolder()));
    EXPECT_TRUE(listener.heard.empty());
}

TEST_F(PackageWriter, KeepsTheFilesWrittenBeforeOneThatCannotBeBuilt) {
    fillDay("2019:3:7", 2);
    transfer.dayMsgMap["2019:3:9"] = {largeMessage()};
    EXPECT_EQ(kJsonFailed, withoutLargeBlocks([this] { return transfer.wtMsgToFile(); }));
    EXPECT_EQ("2019-3-7[1..2]", packageFiles());
}

TEST_F(PackedWriter, KeepsTheFilesWrittenBeforeOneThatCannotBeBuilt) {
    fillDay("2019_3_7", 1000);
    transfer.dayMsgMap["2019_3_9"] = {largeMessage()};
    addAttachment("image/p.jpg", "bytes");
    transfer.imagePaths = {"sub/p.jpg"};
    EXPECT_EQ(kJsonFailed, withoutLargeBlocks([this] { return transfer.wtMsgToFile2(); }));
    EXPECT_EQ("2019-3-7[1..1000]", packageFiles());
    EXPECT_EQ("", test::listing(attachmentFolder()));
}

long long blocksLeft = 0;
void countDown() {
    if (blocksLeft-- <= 0) throw std::bad_alloc();
}

TEST_F(PackageWriter, LeavesNoHalfFileWhereverMemoryRunsOut) {
    fillDay("2019:3:7", 1);
    fillDay("2019:3:8", 1);
    transfer.reContacts.resize(1);
    transfer.progressListener = nullptr;
    bool done = false;
    for (long long blocks = 0; !done; ++blocks) {
        ASSERT_LT(blocks, 1000);
        std::filesystem::remove_all(dir.at("backup"));
        blocksLeft = blocks;
        try {
            const test::LargeBlocks scarce(0, countDown);
            done = transfer.wtMsgToFile() == 0 && blocksLeft >= 0;
        } catch (const std::bad_alloc&) {
            done = false;  // what the host hears when memory runs out elsewhere
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(dir.path())) {
            if (entry.is_directory()) continue;
            const tools::JsonDocument whole(json_parse_file(entry.path().c_str()));
            ASSERT_NE(nullptr, whole) << entry.path() << " after " << blocks << " blocks";
        }
    }
    EXPECT_EQ("msg_0.mg msg_1.mg recontact.mg", test::listing(messageFolder()));
}

// --- Reports in between

bool waited = false;
void waitOnce() {
    if (!waited) std::this_thread::sleep_for(std::chrono::milliseconds(600));
    waited = true;
}

// The first message with a large text takes longer to write than the pause between two reports.
class SlowMessages {
public:
    SlowMessages() : wait_(kLarge, waitOnce) { waited = false; }

private:
    test::LargeBlocks wait_;
};

TEST_F(PackageWriter, ReportsInBetweenAfterHalfASecond) {
    transfer.dayMsgMap["2019:3:1"] = {largeMessage()};
    fillDay("2019:3:8", 1);
    fillDay("2019:3:9", 1);
    const SlowMessages slow;
    EXPECT_EQ(0U, transfer.wtMsgToFile());
    ASSERT_GE(listener.heard.size(), 3U);
    EXPECT_EQ("1 33 1/3", listener.heard[0]);
    EXPECT_EQ("1 100 3/3", listener.heard[listener.heard.size() - 2]);
}

TEST_F(PackedWriter, ReportsTheDaysThatWereDoneBeforeThisOne) {
    transfer.dayMsgMap["2019_3_1"] = {largeMessage()};
    fillDay("2019_3_8", 1);
    fillDay("2019_3_9", 1);
    const SlowMessages slow;
    EXPECT_EQ(0U, transfer.wtMsgToFile2());
    ASSERT_GE(listener.heard.size(), 2U);
    EXPECT_EQ("1 0 0/3", listener.heard[0]);
    for (const std::string& report : listener.heard)
        EXPECT_NE("1 100 3/3", report);
}

TEST_F(PackedWriter, CountsADayThatFillsAFileOnce) {
    fillDay("2019_3_1", 1000);
    fillDay("2019_3_8", 1);
    transfer.dayMsgMap["2019_3_9"] = {largeMessage()};
    const SlowMessages slow;
    EXPECT_EQ(0U, transfer.wtMsgToFile2());
    ASSERT_GE(listener.heard.size(), 2U);
    EXPECT_EQ("1 66 2/3", listener.heard[listener.heard.size() - 2]);
}

// --- Files of at most 1000 messages

TEST_F(PackedWriter, PutsDaysTogetherIntoOneFile) {
    fillDay("2019_3_7", 2, 1);
    fillDay("2019_3_8", 3, 11);
    EXPECT_EQ("2019-3-7[1..2] 2019-3-8[11..13]", packed());
}

TEST_F(PackedWriter, HasTheSameFileFormat) {
    transfer.dayMsgMap["2019_3_7"];
    EXPECT_EQ(0U, transfer.wtMsgToFile2());
    EXPECT_EQ(R"({"version":"1.0","msgs":[{"msgs":[],"date":{"year":2019,"month":3,"day":7}}]})", messageFile(0));
}

TEST_F(PackedWriter, LosesWhatFollowsTheLastFullFileInsideTheLastDay) {
    fillDay("2019_3_7", 400, 1);
    fillDay("2019_3_8", 400, 1001);
    fillDay("2019_3_9", 400, 2001);
    EXPECT_EQ("2019-3-7[1..400] 2019-3-8[1001..1400] 2019-3-9[2001..2200]", packed());
    EXPECT_EQ(1000, transfer.report.messagesWritten);
}

TEST_F(PackedWriter, BeginsTheNextFileWithTheFinishedDayAgain) {
    fillDay("2019_3_7", 1000, 1);
    fillDay("2019_3_8", 10, 2001);
    EXPECT_EQ("2019-3-7[1..1000] | 2019-3-7[] 2019-3-8[2001..2010]", packed());
}

TEST_F(PackedWriter, SpreadsALongDayOverSeveralFiles) {
    fillDay("2019_3_7", 2500, 1);
    fillDay("2019_3_8", 3, 5001);
    EXPECT_EQ("2019-3-7[1..1000] | 2019-3-7[1001..2000] | 2019-3-7[2001..2500] 2019-3-8[5001..5003]", packed());
}

TEST_F(PackedWriter, EndsWithTheFileWhenTheLastDayFillsItExactly) {
    fillDay("2019_3_7", 600, 1);
    fillDay("2019_3_8", 400, 1001);
    EXPECT_EQ("2019-3-7[1..600] 2019-3-8[1001..1400]", packed());
}

TEST_F(PackedWriter, OfOneDayWritesOneThousandMessages) {
    fillDay("2019_3_7", 2500);
    EXPECT_EQ("2019-3-7[1..1000]", packed());
}

TEST_F(PackedWriter, TakesOneMessageMoreIntoTheNextFile) {
    fillDay("2019_3_7", 999, 1);
    fillDay("2019_3_8", 2, 2001);
    fillDay("2019_3_9", 1, 3001);
    EXPECT_EQ("2019-3-7[1..999] 2019-3-8[2001..2001] | 2019-3-8[2002..2002] 2019-3-9[3001..3001]", packed());
}

TEST_F(PackedWriter, OfNoMessagesWritesNoFileAndCopiesTheAttachments) {
    addAttachment("image/p.jpg", "bytes");
    transfer.imagePaths = {"sub/p.jpg"};
    EXPECT_EQ("", packed());
    EXPECT_EQ("bytes", test::readFile(attachmentFolder() + "sub/p.jpg"));
    EXPECT_EQ(std::vector<std::string>{"2 100 1/1"}, listener.heard);
}

TEST_F(PackedWriter, WritesNoContacts) {
    transfer.reContacts.resize(1);
    fillDay("2019_3_7", 1);
    EXPECT_EQ(0U, transfer.wtMsgToFile2());
    EXPECT_EQ("msg_0.mg", test::listing(messageFolder()));
}

TEST_F(PackedWriter, LeavesTheSelectedMessagesAlone) {
    fillDay("2019_3_7", 1001);
    fillDay("2019_3_8", 1);
    EXPECT_EQ(0U, transfer.wtMsgToFile2());
    EXPECT_EQ("2019_3_7=1001 2019_3_8=1", entries());
}

TEST_F(PackedWriter, PassesOverFilesThatCannotBeWrittenAndReportsThem) {
    transfer.packageSubDir = std::string(300, 'd');
    fillDay("2019_3_7", 1001);
    fillDay("2019_3_8", 1);
    EXPECT_EQ(0U, transfer.wtMsgToFile2());
    EXPECT_EQ(2, transfer.report.skippedCount);
    EXPECT_EQ(transfer.msgFileDir + "msg_0.mg", transfer.report.skipped[0].what);
    EXPECT_EQ(transfer.msgFileDir + "msg_1.mg", transfer.report.skipped[1].what);
}

// --- From the databases to the last byte

TEST_F(WholeExport, OfASmallAccountIsTheseBytes) {
    makeAccount();
    runMain({"insert into im_reContact values(12, 11, 1551916800000, 1, 4, 'w', 0, 2, 'a/b', '{}', 'Ann', 99, 3)"});
    addTable("im_msg_12");
    imsdk::st_dbMessageBean message = test::fullMessage();
    message.body = "a/b \"q\" \xF0\x9F\x98\x80 \xFF";
    message.time_ = 1551916800000;
    message.relatedMsgID = 9007199254740993;
    addMessages("im_msg_12", message);
    ASSERT_EQ(0U, transfer.rdMsgFromDB(1, 1, 1));
    ASSERT_EQ(0U, transfer.wtMsgToFile());
    EXPECT_EQ(
        "{\"version\":\"1.0\",\"msgs\":[{\"msgs\":[{\"sendUserID\":2,\"receTargetID\":1,\"sendTime\":1551916800000,"
        "\"message\":\"a\\/b \\\"q\\\" \xF0\x9F\x98\x80 \xEF\xBF\xBD\",\"messageType\":3,\"messageID\":4,"
        "\"format\":\"format\",\"lastMessageID\":5,\"msgProperties\":\"properties\",\"activeType\":15,"
        "\"relatedMsgID\":9007199254740992,\"securityLevel\":20,\"sourceID\":\"source\",\"senderSessionID\":9,"
        "\"#limitRange\":[13,14],\"#relatedUsers\":[18,19]}],\"date\":{\"year\":10,\"month\":11,\"day\":12}}]}",
        messageFile(0));
    EXPECT_EQ(R"({"version":"1.0","recontact":[{"targetID":12,"lastMsgid":11,"time":1551916800000,"type":1,"top":4,)"
              R"("wherefrom":"w","msgType":0,"activeType":2,"lastMsg":"a\/b","msgProp":"{}","name":"Ann",)"
              R"("securityLevel":3}]})",
              contactFile());
}

TEST_F(WholeExport, OfAnAccountWithAKeyIsPlain) {
    transfer.dbKey = "secret";
    makeAccount();
    addTable("im_msg_12");
    addMessages("im_msg_12", messageOn(2019, 3, 7, 5), 251);
    ASSERT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ("2019-3-7[5..254] | 2019-3-7[255..255] | recontact.mg", written());
}

TEST_F(WholeExport, ChangesNothingInTheAccount) {
    makeAccount();
    addTable("im_msg_12");
    addMessages("im_msg_12", messageOn(2019, 3, 7), 3);
    const std::string before = test::readFile(mainPath());
    ASSERT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    ASSERT_EQ(0U, transfer.wtMsgToFile());
    EXPECT_EQ(before, test::readFile(mainPath()));
    EXPECT_EQ("backimsg.db imsg.db", test::listing(dir.at("account/db")));
}

}  // namespace
