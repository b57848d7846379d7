// Reading a package: its folders, its numbered files, versions, grouping, the lists of a day, progress.
#include <chrono>
#include <filesystem>
#include <functional>
#include <thread>

#include "tests/transfer/package_import/import_fixture.h"

namespace fs = std::filesystem;

namespace test {
namespace {

class PackageReader : public ImportFixture {
protected:
    /// Reads the package and gives the ids of conversation 5.
    std::string idsRead() {
        EXPECT_EQ(0U, transfer_.rdMsgFromFile());
        return collectedIds(5);
    }
    void removeFolder(const std::string& name) const { fs::remove_all(dir_.at(name)); }
};

// --- Folders ---

TEST_F(PackageReader, NeedsThePackageRoot) {
    removeFolder("backup/qelmsg_0");
    EXPECT_EQ(kMissing, transfer_.rdMsgFromFile());
}

TEST_F(PackageReader, NeedsTheUsersMessageFolder) {
    removeFolder("backup/qelmsg_0/messages_0/100");
    EXPECT_EQ(kMissing, transfer_.rdMsgFromFile());
}

TEST_F(PackageReader, NeedsTheUsersAttachmentFolder) {
    writeFile(0, smallFile(5, 1));
    removeFolder("backup/qelmsg_0/qelimfiles_0/100");
    EXPECT_EQ(kMissing, transfer_.rdMsgFromFile());
    EXPECT_TRUE(transfer_.msgMap.empty());
}

TEST_F(PackageReader, TakesNoOtherUsersFolder) {
    writeFile(0, smallFile(5, 1));
    transfer_.packageSubDir = "10";
    EXPECT_EQ(kMissing, transfer_.rdMsgFromFile());
}

TEST_F(PackageReader, ClearsNothingWhenAFolderIsMissing) {
    removeFolder("backup/qelmsg_0/qelimfiles_0");
    transfer_.dayMsgMap["2019:3:7"].push_back(messageOf(5, 1));
    transfer_.tableNames = {"im_msg_5"};
    transfer_.rdMsgFromFile();
    EXPECT_EQ(1U, transfer_.dayMsgMap.size());
    EXPECT_EQ(1U, transfer_.tableNames.size());
}

TEST_F(PackageReader, LeavesTheFolderPathsSet) {
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_EQ(dir_.at("backup/qelmsg_0/messages_0/100/"), transfer_.msgFileDir);
    EXPECT_EQ(dir_.at("backup/qelmsg_0/qelimfiles_0/100/"), transfer_.imFileDir);
}

TEST_F(PackageReader, SetsTheFolderPathsEvenWhenOneIsMissing) {
    removeFolder("backup/qelmsg_0/qelimfiles_0");
    transfer_.imFileDir.clear();
    EXPECT_EQ(kMissing, transfer_.rdMsgFromFile());
    EXPECT_EQ(dir_.at("backup/qelmsg_0/messages_0/100/"), transfer_.msgFileDir);
    EXPECT_EQ(dir_.at("backup/qelmsg_0/qelimfiles_0/100/"), transfer_.imFileDir);
}

TEST_F(PackageReader, KeepsADoubledSlashOfTheBackupPath) {
    transfer_.backupPath += "/";
    writeFile(0, smallFile(5, 1));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_EQ(dir_.at("backup//qelmsg_0/messages_0/100/"), transfer_.msgFileDir);
    EXPECT_EQ("1", collectedIds(5));
}

TEST_F(PackageReader, EmptiesTheDayMapAndTheTableNames) {
    transfer_.dayMsgMap["2019:3:7"].push_back(messageOf(5, 1));
    transfer_.tableNames = {"im_msg_5"};
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_TRUE(transfer_.dayMsgMap.empty());
    EXPECT_TRUE(transfer_.tableNames.empty());
}

TEST_F(PackageReader, WritesToNoDatabase) {
    writeFile(0, smallFile(5, 1));
    fs::remove_all(dir_.at("account/db"));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_FALSE(exists(dir_.at("account/db")));
}

// --- Numbers ---

TEST_F(PackageReader, ReadsNothingWithoutFileZero) {
    writeFile(1, smallFile(5, 1));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_TRUE(transfer_.msgMap.empty());
}

TEST_F(PackageReader, StopsAtTheFirstMissingNumber) {
    writeFile(0, smallFile(5, 1));
    writeFile(2, smallFile(5, 2));
    EXPECT_EQ("1", idsRead());
}

TEST_F(PackageReader, CountsTheFilesBeforeTheFirstGap) {
    const std::string folder = dir_.at(messagesFolder_);
    EXPECT_EQ(0, transfer_.getMsgFileNum(folder));
    for (const int number : {0, 1, 3})
        writeFile(number, "");
    EXPECT_EQ(2, transfer_.getMsgFileNum(folder));
    EXPECT_EQ(0, transfer_.getMsgFileNum(dir_.at("nowhere/")));
}

TEST_F(PackageReader, CountsPastNine) {
    for (int number = 0; number < 12; ++number)
        writeFile(number, "");
    EXPECT_EQ(12, transfer_.getMsgFileNum(dir_.at(messagesFolder_)));
}

TEST_F(PackageReader, TakesNoNearMissOfAName) {
    for (const char* name : {"msg_00.mg", "msg_.mg", "MSG_0.mg", "msg_0.mg ", "msg_-0.mg", "msg_0.MG"})
        dir_.write(messagesFolder_ + name, smallFile(5, 1));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_TRUE(transfer_.msgMap.empty());
}

TEST_F(PackageReader, ReadsTheFilesInTheOrderOfTheirNumbers) {
    for (int number = 11; number >= 0; --number)
        writeFile(number, smallFile(5, number));
    EXPECT_EQ("0 1 2 3 4 5 6 7 8 9 10 11", idsRead());
}

// --- Long paths ---

// A package in a message folder so deep that the path of a one-digit file has `length` bytes.
class DeepPackage : public PackageReader {
protected:
    void makeWithPathLength(std::size_t length) {
        const std::string start = transfer_.backupPath + "/qelmsg_0/messages_0/";
        transfer_.packageSubDir = std::string(length - start.size() - std::string("/msg_0.mg").size(), 'u');
        folder_ = "backup/qelmsg_0/messages_0/" + transfer_.packageSubDir + "/";
        dir_.makeDir(folder_);
        dir_.makeDir("backup/qelmsg_0/qelimfiles_0/" + transfer_.packageSubDir);
    }
    void write(int number) const {
        dir_.write(folder_ + "msg_" + std::to_string(number) + ".mg", smallFile(5, number));
    }

    std::string folder_;
};

TEST_F(DeepPackage, IsReadBeyondAHundredBytesWithItsProgress) {
    makeWithPathLength(150);
    for (const int number : {0, 1, 2})
        write(number);
    EXPECT_EQ(3, transfer_.getMsgFileNum(dir_.at(folder_)));
    EXPECT_EQ("0 1 2", idsRead());
    EXPECT_EQ(std::vector<std::string>{"2 100 3/3"}, listener_.heard);
}

TEST_F(DeepPackage, IsReadUpTo259Bytes) {
    makeWithPathLength(259);
    write(0);
    EXPECT_EQ(1, transfer_.getMsgFileNum(dir_.at(folder_)));
    EXPECT_EQ("0", idsRead());
}

TEST_F(DeepPackage, CountsAsWithoutFilesFrom260BytesOn) {
    makeWithPathLength(260);
    write(0);
    EXPECT_EQ(0, transfer_.getMsgFileNum(dir_.at(folder_)));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_TRUE(transfer_.msgMap.empty());
    EXPECT_TRUE(listener_.heard.empty());
}

TEST_F(DeepPackage, EndsWhereTheNumberMakesThePathTooLong) {
    makeWithPathLength(259);
    for (int number = 0; number < 12; ++number)
        write(number);
    EXPECT_EQ("0 1 2 3 4 5 6 7 8 9", idsRead());
    EXPECT_EQ(std::vector<std::string>{"2 100 10/10"}, listener_.heard);
}

// --- Version ---

std::string fileOfVersion(const std::string& json, long long id) {
    return R"({"version":)" + json + R"(,"msgs":[)" + dayJson(messageJson(5, id)) + "]}";
}

TEST_F(PackageReader, EndsAtAnotherVersionAndKeepsWhatItHas) {
    writeFile(0, smallFile(5, 1));
    writeFile(1, fileOfVersion(R"("2.0")", 2));
    writeFile(2, smallFile(5, 3));
    EXPECT_EQ(kWrongVersion, transfer_.rdMsgFromFile());
    EXPECT_EQ("1", collectedIds(5));
}

TEST_F(PackageReader, EndsAtAFileWithoutVersion) {
    writeFile(0, R"({"msgs":[]})");
    EXPECT_EQ(kWrongVersion, transfer_.rdMsgFromFile());
}

TEST_F(PackageReader, ComparesVersionsByteForByte) {
    for (const char* version : {R"("1.0 ")", R"(" 1.0")", R"("1")", R"("1.00")", R"("1.0\u0000")", R"("")", "1.0", "1",
                                "null", "true", R"(["1.0"])", R"({"version":"1.0"})"}) {
        writeFile(0, fileOfVersion(version, 1));
        EXPECT_NE(0U, transfer_.rdMsgFromFile()) << version;
        EXPECT_TRUE(transfer_.msgMap.empty()) << version;
    }
}

TEST_F(PackageReader, ComparesVersionsWithCase) {
    transfer_.packageVersion = "v1";
    writeFile(0, fileOfVersion(R"("V1")", 1));
    EXPECT_EQ(kWrongVersion, transfer_.rdMsgFromFile());
}

TEST_F(PackageReader, TakesAnEmptyVersionForAnEmptyVersion) {
    transfer_.packageVersion.clear();
    writeFile(0, fileOfVersion(R"("")", 1));
    EXPECT_EQ("1", idsRead());
}

TEST_F(PackageReader, TellsAMissingVersionFromAnEmptyOne) {
    transfer_.packageVersion.clear();
    writeFile(0, R"({"msgs":[]})");
    EXPECT_EQ(kWrongVersion, transfer_.rdMsgFromFile());
}

TEST_F(PackageReader, FailsOnTheVersionOfAMessageFileAlthoughTheContactsAreGood) {
    writeContacts(contactsJson(R"({"targetID":5})"));
    writeFile(0, fileOfVersion(R"("2.0")", 1));
    EXPECT_EQ(kWrongVersion, transfer_.rdMsgFromFile());
    EXPECT_EQ(1U, transfer_.reContacts.size());
}

// --- Recent contacts beside the messages ---

TEST_F(PackageReader, ReadsTheRecentContactsToo) {
    writeContacts(contactsJson(R"({"targetID":5},{"targetID":6})"));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_EQ(2U, transfer_.reContacts.size());
}

TEST_F(PackageReader, KeepsEarlierContactsWhenThePackageHasNone) {
    transfer_.reContacts.push_back(contactOf(9, 1, 0));
    writeFile(0, smallFile(5, 1));
    EXPECT_EQ("1", idsRead());
    EXPECT_EQ(1U, transfer_.reContacts.size());
}

TEST_F(PackageReader, GoesOnWithoutContactsThatCannotBeRead) {
    for (const char* contacts : {"", "not JSON", "[]", R"({"version":"2.0","recontact":[{"targetID":5}]})"}) {
        writeContacts(contacts);
        transfer_.reContacts = {contactOf(9, 1, 0)};
        EXPECT_EQ(1, readOnly(smallFile(5, 1)).msgID) << contacts;
        EXPECT_TRUE(transfer_.reContacts.empty()) << contacts;
        EXPECT_TRUE(reported("recontact.mg")) << contacts;
    }
}

// --- Files without messages ---

TEST_F(PackageReader, PassesOverFilesThatAreNoObjectOrHaveNoDays) {
    const std::vector<std::string> bad = {"[]",
                                          "7",
                                          R"("text")",
                                          "null",
                                          R"({"version":"1.0"})",
                                          R"({"version":"1.0","msgs":{}})",
                                          R"({"version":"1.0","msgs":null})",
                                          R"({"version":"1.0","msgs":"[]"})",
                                          R"({"version":"1.0","MSGS":[]})"};
    int number = 0;
    for (const std::string& file : bad)
        writeFile(number++, file);
    writeFile(number, smallFile(5, 1));
    EXPECT_EQ("1", idsRead());
    EXPECT_EQ(static_cast<long long>(bad.size()), transfer_.report.skippedCount);
}

TEST_F(PackageReader, LooksAtTheVersionBeforeTheDays) {
    writeFile(0, R"({"version":"2.0"})");
    EXPECT_EQ(kWrongVersion, transfer_.rdMsgFromFile());
}

TEST_F(PackageReader, TakesDaysWithoutMessagesForEmpty) {
    writeFile(0, fileJson(R"({},{"msgs":{}},{"msgs":null},{"date":{"year":1}},)" + dayJson("")));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_TRUE(transfer_.msgMap.empty());
}

TEST_F(PackageReader, PassesOverDaysAndMessagesThatAreNoObjects) {
    const std::string junk = R"(null,1,"x",[],true,)";
    writeFile(0, fileJson(junk + dayJson(junk + messageJson(5, 1))));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_EQ(1U, transfer_.msgMap.size());
    EXPECT_EQ("1", collectedIds(5));
}

// --- Grouping ---

TEST_F(PackageReader, GroupsByConversationInFileOrder) {
    writeFile(0, fileJson(dayJson(messageJson(5, 3) + "," + messageJson(6, 2)) + "," + dayJson(messageJson(5, 1))));
    writeFile(1, smallFile(5, 2));
    EXPECT_EQ("3 1 2", idsRead());
    EXPECT_EQ("2", collectedIds(6));
    EXPECT_EQ(4, transfer_.report.messagesRead);
}

TEST_F(PackageReader, KeepsMessagesOfTheSameId) {
    writeFile(0, fileJson(dayJson(messageJson(5, 1) + "," + messageJson(5, 1))));
    EXPECT_EQ("1 1", idsRead());
}

TEST_F(PackageReader, AddsToWhatAnEarlierReadLeft) {
    writeFile(0, fileJson(dayJson(messageJson(5, 1) + "," + messageJson(5, 2))));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_EQ("1 2 1 2", idsRead());
}

TEST_F(PackageReader, TakesConversationZeroForAMessageWithoutOne) {
    const imsdk::st_dbMessageBean message = readOnly(fileJson(dayJson(R"({"messageID":3})")));
    EXPECT_EQ(0, message.targetID);
    EXPECT_EQ("3", collectedIds(0));
}

// --- Lists of a day ---

TEST_F(PackageReader, GivesEveryMessageOfADayTheListsOfTheDay) {
    const std::string lists = R"(,"#limitRange":[1,2,3],"#relatedUsers":[-4])";
    writeFile(0, fileJson(dayJson(messageJson(5, 1) + "," + messageJson(5, 2), lists)));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    for (const imsdk::st_dbMessageBean& message : transfer_.msgMap.at(5)) {
        EXPECT_EQ("1;2;3", message.limitRange);
        EXPECT_EQ("-4", message.relatedUsers);
    }
}

TEST_F(PackageReader, GivesADayNoListsOfAnotherDay) {
    writeFile(0, fileJson(dayJson(messageJson(5, 1), R"(,"#limitRange":[1])") + "," + dayJson(messageJson(5, 2))));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_EQ("1", transfer_.msgMap.at(5)[0].limitRange);
    EXPECT_EQ("", transfer_.msgMap.at(5)[1].limitRange);
}

TEST_F(PackageReader, IgnoresTheListsOfAMessage) {
    const std::string lists = R"(,"#limitRange":[1,2],"#relatedUsers":[3])";
    const imsdk::st_dbMessageBean message = readOnly(fileJson(dayJson(messageJson(5, 1, lists))));
    EXPECT_EQ("", message.limitRange);
    EXPECT_EQ("", message.relatedUsers);
}

TEST_F(PackageReader, TakesAListOfAnotherTypeForAbsent) {
    for (const char* list : {"[]", "null", R"("1;2")", "12", R"({"0":1})"}) {
        const std::string lists = std::string(R"(,"#limitRange":)") + list;
        EXPECT_EQ("", readOnly(fileJson(dayJson(messageJson(5, 1), lists))).limitRange) << list;
    }
}

TEST_F(PackageReader, TakesListElementsOfAnotherTypeForZero) {
    const std::string lists = R"(,"#limitRange":["1",null,7,[],2.9])";
    EXPECT_EQ("0;0;7;0;2", readOnly(fileJson(dayJson(messageJson(5, 1), lists))).limitRange);
}

TEST_F(PackageReader, KeepsListIdsOf19DigitsExactly) {
    const std::string lists = R"(,"#relatedUsers":[9007199254740993,9223372036854775807,-9223372036854775808])";
    EXPECT_EQ("9007199254740993;9223372036854775807;-9223372036854775808",
              readOnly(fileJson(dayJson(messageJson(5, 1), lists))).relatedUsers);
}

// --- Progress ---

using Heard = std::vector<std::string>;

TEST_F(PackageReader, ReportsTheLastFileWithTheHostsContext) {
    for (const int number : {0, 1, 2})
        writeFile(number, smallFile(5, number));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_EQ(Heard{"2 100 3/3"}, listener_.heard);
    EXPECT_EQ(std::vector<long long>{7}, listener_.contexts);
}

TEST_F(PackageReader, CountsAnUnreadableFirstFileInTheTotal) {
    writeFile(0, "not JSON");
    writeFile(1, smallFile(5, 1));
    EXPECT_EQ("1", idsRead());
    EXPECT_EQ(Heard{"2 100 2/2"}, listener_.heard);
}

TEST_F(PackageReader, ReportsNothingForALastFileThatIsPassedOver) {
    for (const char* last : {"not JSON", "[]", R"({"version":"1.0"})", R"({"version":"2.0","msgs":[]})"}) {
        writeFile(0, smallFile(5, 1));
        writeFile(1, last);
        transfer_.rdMsgFromFile();
        EXPECT_EQ(Heard{}, listener_.heard) << last;
    }
}

TEST_F(PackageReader, ReportsALastFileWithoutDays) {
    writeFile(0, smallFile(5, 1));
    writeFile(1, fileJson(""));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_EQ(Heard{"2 100 2/2"}, listener_.heard);
}

TEST_F(PackageReader, ReportsNothingWithoutFiles) {
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_EQ(Heard{}, listener_.heard);
}

TEST_F(PackageReader, NeedsNoListener) {
    transfer_.progressListener = nullptr;
    EXPECT_EQ(1, readOnly(smallFile(5, 1)).msgID);
}

TEST_F(PackageReader, StoppedByItsListenerKeepsWhatItHasRead) {
    writeFile(0, smallFile(5, 1));
    StoppingListener cancel;
    transfer_.progressListener = &cancel;
    EXPECT_THROW(transfer_.rdMsgFromFile(), StoppedByHost);
    EXPECT_EQ("1", collectedIds(5));
}

// Runs an action on its first report, as a slow host does.
class ActingListener : public RecordingListener {
public:
    explicit ActingListener(std::function<void()> action) : action_(std::move(action)) {}
    void onProgress(long long context, int stage, int percent, const char* text) override {
        RecordingListener::onProgress(context, stage, percent, text);
        if (heard.size() == 1) action_();
    }

private:
    std::function<void()> action_;
};

TEST_F(PackageReader, ReadsFilesBeyondTheCountedOnesAndReportsThemAfterHalfASecond) {
    writeFile(0, smallFile(5, 1));
    ActingListener listener([this] {
        writeFile(1, smallFile(5, 2));
        std::this_thread::sleep_for(std::chrono::milliseconds(520));
    });
    transfer_.progressListener = &listener;
    EXPECT_EQ("1 2", idsRead());
    EXPECT_EQ((Heard{"2 100 1/1", "2 200 2/1"}), listener.heard);
}

TEST_F(PackageReader, ReportsNotTwiceWithinHalfASecond) {
    writeFile(0, smallFile(5, 1));
    ActingListener listener([this] { writeFile(1, smallFile(5, 2)); });
    transfer_.progressListener = &listener;
    EXPECT_EQ("1 2", idsRead());
    EXPECT_EQ(Heard{"2 100 1/1"}, listener.heard);
}

}  // namespace
}  // namespace test
