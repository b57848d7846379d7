// Transfer objects are independent of each other: each may work on a thread of its own, at the same time.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "host/CAES.h"
#include "tests/support/database.h"
#include "tests/support/temp_dir.h"
#include "transfer/dbTrans.h"

namespace test {
namespace {

constexpr std::size_t kThreads = 4;
constexpr int kMessages = 30;

// Runs the work on all threads at once. Nothing has used the database engine before: they are also the first to do so.
std::vector<std::string> onThreads(const std::function<std::string(std::size_t)>& work) {
    std::vector<std::string> results(kThreads);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < kThreads; ++i)
        threads.emplace_back([&, i] { results[i] = work(i); });
    for (std::thread& thread : threads)
        thread.join();
    return results;
}

// The two accounts of one user, and the folder from which the one and then the other gets its history.
class History {
public:
    explicit History(std::string key) : key_(std::move(key)) {
        for (const char* account : {"first", "second"}) {
            for (const char* database : {"imsg.db", "backimsg.db", "plugin/kab.db"})
                dir_.write(std::string(account) + "/db/" + database, "");
            for (const char* folder : {"audio", "file", "image", "video"})
                dir_.makeDir(std::string(account) + "/" + folder);
        }
        dir_.makeDir("backup/qelbackup/100/imfiles");
    }

    /// A tree with one message file and a voice attachment.
    void addTree() const {
        std::string messages;
        for (int id = 1; id <= kMessages; ++id) {
            const bool voice = id == 1;
            const std::string body = voice ? R"("{\"mediaUrl\": \"/a.amr\", \"fileName\": \"a.amr\"}")" : R"("text")";
            messages += (voice ? "" : ",") + (R"({"messageID": )" + std::to_string(id)) +
                        R"(, "sendUserID": 5, "receTargetID": 100, "sendTime": 1, "messageType": )" +
                        (voice ? "3" : "1") + R"(, "message": )" + body + "}";
        }
        const std::string day = R"({"date": {"year": 2021, "month": 5, "day": 9}, "msgs": [)" + messages + "]}";
        const std::string plain = dir_.write("plain", R"({"version": "1.0", "msgs": [)" + day + "]}");
        const std::string file = dir_.makeDir("backup/qelbackup/100/5") + "/1.mg";
        std::array<char, 256> error{};
        EXPECT_EQ(0, CAES().File_Aes_Go_Block(true, key_.c_str(), plain.c_str(), file.c_str(), error.data()));
        dir_.write("backup/qelbackup/100/imfiles/a.amr", "sound");
    }

    void importTree() const {
        dbTrans transfer;
        setUp(transfer, "first");
        EXPECT_EQ(0, transfer.rdAllFromFileNJ());
        EXPECT_EQ(0, transfer.wtAllToDBNJ());
    }
    void exportPackage() const {
        dbTrans transfer;
        setUp(transfer, "first");
        EXPECT_EQ(0U, transfer.rdMsgFromDB(2021, 1, 1));
        EXPECT_EQ(0U, transfer.wtMsgToFile());
    }
    void importPackage() const {
        dbTrans transfer;
        setUp(transfer, "second");
        EXPECT_EQ(0U, transfer.rdMsgFromFile());
        EXPECT_EQ(0U, transfer.wtMsgToDB());
    }

    /// What has arrived in an account: the number of its messages, and its voice files.
    std::string arrivedIn(const std::string& account) const {
        return queryText(dir_.at(account + "/db/imsg.db"), "select count(*) from im_msg_5", 1, key_.c_str()) + " " +
               listing(dir_.at(account + "/audio"));
    }

private:
    void setUp(dbTrans& transfer, const std::string& account) const {
        const std::string root = dir_.at(account);
        transfer.rootPath = root;
        transfer.backupPath = dir_.at("backup");
        transfer.packageSubDir = "100";
        transfer.packageVersion = "1.0";
        transfer.dbKey = key_;
        transfer.userAudioDir = root + "/audio/";
        transfer.userFileDir = root + "/file/";
        transfer.userImageDir = root + "/image/";
        transfer.userVideoDir = root + "/video/";
    }

    TempDir dir_;
    std::string key_;
};

const std::string kAll = std::to_string(kMessages) + " a.amr";

TEST(ObjectsOnThreads, EachMovesAHistoryOfItsOwn) {
    const std::vector<std::string> arrived = onThreads([](std::size_t i) {
        const History history("key of user " + std::to_string(i));
        history.addTree();
        history.importTree();
        history.exportPackage();
        history.importPackage();
        return history.arrivedIn("second");
    });
    EXPECT_EQ(std::vector<std::string>(kThreads, kAll), arrived);
}

TEST(ObjectsOnThreads, ExportOneAccountIntoAPackageWhileOthersReadIt) {
    const History history("key");
    history.addTree();
    history.importTree();
    const std::vector<std::string> seen = onThreads([&history](std::size_t i) {
        if (i == 0) history.exportPackage();
        return history.arrivedIn("first");
    });
    EXPECT_EQ(std::vector<std::string>(kThreads, kAll), seen);
}

}  // namespace
}  // namespace test
