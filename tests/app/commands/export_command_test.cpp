#include <fcntl.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "host/files/file_handle.h"
#include "tests/app/fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;

class ExportCommand : public CommandTest {
protected:
    // Starts an export of "big" and kills it in the middle of the message files.
    void killExportHalfWay() const {
        const pid_t child =
            startChatTransfer({"export", "--account", at("big"), "--user", kUser, "--to", at("package")});
        const std::string staged = at("package/.chat-transfer.part/qelmsg_0/messages_0/") + kUser + "/msg_1.mg";
        const bool begun = waitUntilThere(staged);
        kill(child, SIGKILL);
        const Outcome run = waitFor(child);
        ASSERT_TRUE(begun);
        ASSERT_TRUE(run.killed) << "the export was over before it could be killed";
    }
};

TEST_F(ExportCommand, WritesThePackageAndSaysHowMuch) {
    makeSample("account");
    expectRows(expectSuccess(exportFrom("account", "package")), {{"Messages written", "300"},
                                                                 {"Conversations", "4"},
                                                                 {"Days", "5"},
                                                                 {"Recent contacts", "4"},
                                                                 {"Attachments copied", "4"}});
    EXPECT_TRUE(exists(messageFolder("package") + "msg_0.mg"));
    EXPECT_TRUE(exists(messageFolder("package") + "recontact.mg"));
}

TEST_F(ExportCommand, LeavesNothingButThePackageBehind) {
    makePackage("account", "package");
    EXPECT_EQ("qelmsg_0", listing(at("package")));
    EXPECT_EQ(0700U, permissionsOf(at("package/qelmsg_0")));
}

TEST_F(ExportCommand, RefusesToOverwriteAPackage) {
    makePackage("account", "package");
    const std::string before = readFile(messageFolder("package") + "msg_0.mg");
    expectFailure(exportFrom("account", "package"),
                  {"0xff00001e (there is a package already", "move the package away"});
    EXPECT_EQ(before, readFile(messageFolder("package") + "msg_0.mg"));
}

TEST_F(ExportCommand, RefusesADanglingLinkInThePackagesPlace) {
    makeSample("account");
    dir_.makeDir("package");
    fs::create_symlink(at("elsewhere"), at("package/qelmsg_0"));
    EXPECT_EXIT_CODE(1, exportFrom("account", "package"));
    EXPECT_FALSE(exists(at("elsewhere")));
}

TEST_F(ExportCommand, NamesAMissingAccountAndWhatToDo) {
    expectFailure(exportFrom("nobody", "package"), {"there is no such file", mainDatabase("nobody"), "--account"});
    EXPECT_FALSE(exists(at("package")));
}

TEST_F(ExportCommand, NamesAMissingBackDatabase) {
    makeSample("account");
    fs::remove(at("account/db/backimsg.db"));
    expectFailure(exportFrom("account", "package"), {"backimsg.db"});
    EXPECT_FALSE(exists(at("account/db/backimsg.db")));
}

TEST_F(ExportCommand, NeedsTheTableOfRecentContacts) {
    makeAccount("account", {"drop table im_reContact", createTable("im_msg_5")});
    expectFailure(exportFrom("account", "package"), {"0xff000020", "im_reContact"});
    EXPECT_EQ("", listing(at("package")));
}

TEST_F(ExportCommand, SelectsMessagesSinceADay) {
    makeSample("account");
    EXPECT_EQ("2", rowOf(expectSuccess(exportFrom("account", "package", {"--since", "2024-06-29"})).out, "Days"));
}

TEST_F(ExportCommand, TakesMessagesOfTheYearZeroWithoutSince) {
    makeAccount("account", {createTable("im_msg_5"), insertMessage("im_msg_5", 1, "'old'"),
                            "update im_msg_5 set year_ = 0, mon = 0, day_ = 0"});
    EXPECT_EQ("1", rowOf(exportFrom("account", "package").out, "Messages written"));
}

TEST_F(ExportCommand, SaysHowManyMessagesHaveNoDate) {
    makeAccount("account",
                {createTable("im_msg_5"), insertMessage("im_msg_5", 1, "'dated'"),
                 insertMessage("im_msg_5", 2, "'undated'"), "update im_msg_5 set year_ = null where msgID = 2"});
    const Outcome run = expectSuccess(exportFrom("account", "package"));
    EXPECT_EQ("1", rowOf(run.out, "Messages written"));
    EXPECT_SAYS("1 message has no date", run.err);
}

TEST_F(ExportCommand, MarksThePackageWithTheVersion) {
    makeSample("account");
    ASSERT_EXIT_CODE(0, exportFrom("account", "package", {"--package-version", "7.2-beta"}));
    EXPECT_SAYS("\"version\":\"7.2-beta\"", readFile(messageFolder("package") + "msg_0.mg"));
}

TEST_F(ExportCommand, WorksUnderAPathOfTwoHundredBytes) {
    makeSample("account");
    const std::string longName = std::string(100, 'a') + "/" + std::string(100, 'b');
    EXPECT_EXIT_CODE(0, exportFrom("account", longName));
    EXPECT_TRUE(exists(messageFolder(longName) + "msg_0.mg"));
    EXPECT_EXIT_CODE(0, importInto("copy", longName));
    EXPECT_EXIT_CODE(0, verify(longName, "copy"));
}

TEST_F(ExportCommand, TakesRelativePaths) {
    makeSample("account");
    expectSuccess(chatTransfer({"export", "--account", "account/", "--user", kUser, "--to", "./sub/../package/"},
                               {{}, 0, dir_.path()}));
    EXPECT_TRUE(hasPackage("package"));
}

TEST_F(ExportCommand, KilledHalfWayLeavesNoPackage) {
    ASSERT_EXIT_CODE(0, sample("big", {"--messages", "40000", "--days", "300"}));
    killExportHalfWay();
    EXPECT_FALSE(hasPackage("package"));
}

TEST_F(ExportCommand, ClearsTheLeftoverOfAKilledOne) {
    ASSERT_EXIT_CODE(0, sample("big", {"--messages", "40000", "--days", "300"}));
    killExportHalfWay();
    ASSERT_EQ(".chat-transfer.part", listing(at("package")));
    EXPECT_EXIT_CODE(0, exportFrom("big", "package"));
    EXPECT_EQ("qelmsg_0", listing(at("package")));
    EXPECT_EXIT_CODE(0, verify("package", "big"));
}

TEST_F(ExportCommand, DoesNotDisturbAnotherOneIntoTheSameFolder) {
    makeSample("account");
    dir_.write("package/.chat-transfer.part/of-the-other", "");
    const tools::detail::FileHandle other(open(at("package").c_str(), O_RDONLY | O_DIRECTORY));
    ASSERT_EQ(0, flock(other.get(), LOCK_EX));
    expectFailure(exportFrom("account", "package"), {"Another export into this folder is at work"});
    EXPECT_TRUE(exists(at("package/.chat-transfer.part/of-the-other")));
}

TEST_F(ExportCommand, SaysBeforehandHowMuchItWillWrite) {
    makeSample("account");
    expectSuccess(exportFrom("account", "package"), {"To export: 300 messages and 4 attachments, about "});
}

// A file system of its own, as small as a memory card.
class SmallDisk {
public:
    explicit SmallDisk(const std::string& folder) : folder_(folder) {
        mounted_ = mount("none", folder.c_str(), "tmpfs", 0, "size=64k") == 0;
    }
    ~SmallDisk() {
        if (mounted_) umount(folder_.c_str());
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool isMounted() const { return mounted_; }

private:
    std::string folder_;
    bool mounted_ = false;
};

TEST_F(ExportCommand, WithoutRoomOnTheDiskSaysSoBeforeItWrites) {
    makeSample("account");
    const SmallDisk disk(dir_.makeDir("disk"));
    if (!disk.isMounted()) GTEST_SKIP() << "no file system can be mounted here";
    const Outcome run = expectFailure(exportFrom("account", "disk"),
                                      {"The disk has no room for the package, and none was made", "are free"});
    EXPECT_SAYS_NOT("Writing message files", run.err);
    EXPECT_EQ("", listing(at("disk")));
}

TEST_F(ExportCommand, LeavesNoPackageWhenAMessageFileCannotBeWritten) {
    makeSample("account");
    expectFailure(exportFrom("account", "package", {}, {{}, 10000}),
                  {"could not be written whole, and none was left", "the message file could not be written"});
    EXPECT_EQ("", listing(at("package")));
}

TEST_F(ExportCommand, LeavesNoPackageWhenTheContactFileCannotBeWritten) {
    const std::string name(20000, 'n');
    makeAccount("account", {"insert into im_reContact(targetID, name) values(5, '" + name + "')"});
    expectFailure(exportFrom("account", "package", {}, {{}, 10000}), {"the recent-contact file could not be written"});
    EXPECT_FALSE(hasPackage("package"));
}

TEST_F(ExportCommand, FailsWhenAnAttachmentCannotBeCopiedButKeepsTheRest) {
    makeAccount("account",
                {createTable("im_msg_5"), insertMessage("im_msg_5", 1, R"('{"mediaUrl":"a/b","fileName":"big"}')"),
                 "update im_msg_5 set msgType = 6"});
    dir_.write("account/file/big", std::string(200000, 'x'));
    const Outcome run = expectFailure(exportFrom("account", "package", {}, {{}, 100000}),
                                      {"a/big: the attachment could not be written"});
    EXPECT_EQ("1", rowOf(run.out, "Attachments failed"));
    EXPECT_TRUE(hasPackage("package"));
}

TEST_F(ExportCommand, CountsMissingAndRefusedAttachmentsWithoutFailing) {
    makeAccount(
        "account",
        {createTable("im_msg_5"), insertMessage("im_msg_5", 1, R"('{"mediaUrl":"a/b","fileName":"gone"}')"),
         insertMessage("im_msg_5", 2, R"('{"mediaUrl":"../b","fileName":"out"}')"), "update im_msg_5 set msgType = 6"});
    const Outcome run = expectSuccess(exportFrom("account", "package"));
    expectRows(run, {{"Attachments missing", "1"}, {"Attachments refused", "1"}});
    EXPECT_SAYS("a/gone: the attachment is missing", run.err);
}

TEST_F(ExportCommand, DoesNotFailOnImagesThatHaveNoFolder) {
    makeAccount("account", {createTable("im_msg_5"),
                            insertMessage("im_msg_5", 1, R"('{"mediaUrl":"p.png","thumbUrl":"a/t.png"}')"),
                            "update im_msg_5 set msgType = 5"});
    dir_.write("account/image/p.png", "picture");
    dir_.write("account/image/t.png", "thumbnail");
    expectRows(expectSuccess(exportFrom("account", "package")),
               {{"Attachments failed", "1"}, {"Attachments copied", "1"}});
}

TEST_F(ExportCommand, FailsWhenAConversationIsDamaged) {
    ASSERT_EXIT_CODE(0, sample("account", {"--messages", "3000", "--conversations", "1"}));
    std::string bytes = readFile(mainDatabase("account"));
    bytes.replace(bytes.size() / 2, 8192, std::string(8192, '\xFF'));
    dir_.write("account/db/imsg.db", bytes);
    expectFailure(exportFrom("account", "package"), {"The account could not be read whole, and no package was made"});
    EXPECT_EQ("", listing(at("package")));
}

TEST_F(ExportCommand, ShowsNoControlCharacterOfATableName) {
    makeAccount("account", {"create table \"im_msg_\x1b[31m\u009b5m\n\"(x)"});
    const Outcome run = expectSuccess(exportFrom("account", "package"));
    EXPECT_SAYS("im_msg_\\x1b[31m", run.err);
    EXPECT_FALSE(hasControlCharacter(run.all()));
}

TEST_F(ExportCommand, ShowsNoControlCharacterOfAnAttachmentName) {
    makeAccount("account", {createTable("im_msg_5"),
                            insertMessage("im_msg_5", 1, R"('{"mediaUrl":"a/b","fileName":"\u001b]0;owned\u0007"}')"),
                            "update im_msg_5 set msgType = 6"});
    const Outcome run = exportFrom("account", "package");
    EXPECT_SAYS("a/\\x1b]0;owned\\x07: the attachment is missing", run.err);
    EXPECT_FALSE(hasControlCharacter(run.all()));
}

TEST_F(ExportCommand, PackedSaysHowManyMessagesItLeftOut) {
    // 1,100 messages of the last day in key order (2024_6_30), after 100 of the day before: 900 of them fit the file.
    std::vector<std::string> statements = {createTable("im_msg_5")};
    statements.emplace_back(
        "insert into im_msg_5(msgID, targetID, msgType, year_, mon, day_) with recursive n(i) as (select 1 "
        "union all select i + 1 from n where i < 1200) select i, 5, 1, 2024, 6, "
        "case when i <= 100 then 29 else 30 end from n");
    makeAccount("account", statements);
    const Outcome run = expectSuccess(exportFrom("account", "package", {"--layout", "packed"}));
    expectRows(run, {{"Messages written", "1,000"}, {"Messages left out", "200"}});
    EXPECT_SAYS("the packed layout left out 200 messages", run.err);
    EXPECT_FALSE(exists(messageFolder("package") + "recontact.mg"));
}

TEST_F(ExportCommand, PackedLeavesNothingOutWhereTheLastFileHasRoom) {
    makeSample("account");
    const Outcome run = expectSuccess(exportFrom("account", "package", {"--layout", "packed"}));
    expectRows(run, {{"Messages written", "300"}, {"Messages left out", "0"}});
    EXPECT_SAYS_NOT("warning", run.err);
}

TEST_F(ExportCommand, PackedLeavesNoPackageWhenAMessageFileCannotBeWritten) {
    makeSample("account");
    EXPECT_EXIT_CODE(1, exportFrom("account", "package", {"--layout", "packed"}, {{}, 10000}));
    EXPECT_EQ("", listing(at("package")));
}

TEST_F(ExportCommand, PackedNeedsNeitherBackDatabaseNorContacts) {
    makeAccount("account", {"drop table im_reContact", createTable("im_msg_5"), insertMessage("im_msg_5", 1, "'x'")});
    fs::remove(at("account/db/backimsg.db"));
    EXPECT_EXIT_CODE(0, exportFrom("account", "package", {"--layout", "packed"}));
}

TEST_F(ExportCommand, OfAnEmptyAccountIsAnEmptyPackage) {
    makeAccount("account", {});
    for (const char* layout : {"days", "packed"}) {
        EXPECT_EQ("0",
                  rowOf(expectSuccess(exportFrom("account", layout, {"--layout", layout})).out, "Messages written"));
    }
}

TEST_F(ExportCommand, DrawsAProgressBarOnATerminal) {
    makeSample("account");
    expectSuccess(exportOnTerminal(), {"Copying attachments [######################..] 95 % (4/4), ",
                                       "Done [########################] 100 %"});
}

// The numbers in front of `unit`, in their order.
std::vector<double> numbersBefore(const std::string& unit, const std::string& text) {
    std::vector<double> numbers;
    for (std::size_t end = text.find(unit); end != std::string::npos; end = text.find(unit, end + 1)) {
        const std::size_t begin = text.find_last_not_of("0123456789.", end - 1) + 1;
        numbers.push_back(std::stod(text.substr(begin, end - begin)));
    }
    return numbers;
}

TEST_F(ExportCommand, ShowsPercentagesAndRemainingTimesThatNeverGoBack) {
    ASSERT_EXIT_CODE(0, sample("account", {"--messages", "20000", "--days", "100"}));
    const Outcome run = exportOnTerminal();
    const std::vector<double> percentages = numbersBefore(" % (", run.out);
    EXPECT_GE(percentages.size(), 2U);
    EXPECT_TRUE(std::is_sorted(percentages.begin(), percentages.end())) << run.out;
    const std::vector<double> seconds = numbersBefore(" s left", run.out);
    EXPECT_GE(seconds.size(), 2U);
    EXPECT_TRUE(std::is_sorted(seconds.rbegin(), seconds.rend())) << run.out;
}

TEST_F(ExportCommand, ThatFailsNeverShowsAHundredPercent) {
    makeSample("account");
    const Outcome run = expectFailure(exportFrom("account", "package", {}, {{}, 10000}));
    EXPECT_SAYS_NOT("100 %", run.err);
}

}  // namespace
}  // namespace test
