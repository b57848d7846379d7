#include "tests/transfer/tree/tree_fixture.h"

#include <array>
#include <filesystem>

#include "host/CAES.h"
#include "tests/support/json_text.h"
#include "tests/support/listed.h"

namespace fs = std::filesystem;

namespace test {
namespace {

std::string array(const std::vector<std::string>& elements) {
    return "[" + listed(elements, ",") + "]";
}

}  // namespace

// The first of two equal keys would win, so what a test states stands in front.
std::string message(long long id, const std::string& more) {
    const auto unlessStated = [&more](const std::string& name, const std::string& value) {
        const std::string quotedName = R"(")" + name + R"(")";
        return more.find(quotedName) != std::string::npos ? "" : R"(,")" + name + R"(": )" + value;
    };
    return R"({"messageID": )" + std::to_string(id) + unlessStated("sendUserID", std::to_string(kUser)) +
           unlessStated("receTargetID", std::to_string(kPartner)) + unlessStated("sendTime", std::to_string(id)) +
           unlessStated("messageType", "1") + unlessStated("message", R"("text")") + (more.empty() ? "" : ",") + more +
           "}";
}

std::string messageWithBody(long long id, int type, const std::string& body) {
    return message(id, R"("messageType": )" + std::to_string(type) + R"(, "message": )" + quoted(body));
}

std::string messageFile(const std::vector<std::string>& messages, const std::string& version) {
    return recordFile("msgs", {R"({"date": {"year": 2021, "month": 5, "day": 9}, "msgs": )" + array(messages) + "}"},
                      version);
}

std::string recordFile(const std::string& key, const std::vector<std::string>& records, const std::string& version) {
    return R"({"version": )" + quoted(version) + R"(, ")" + key + R"(": )" + array(records) + "}";
}

TreeTest::TreeTest() {
    transfer.rootPath = home.at("account");
    transfer.backupPath = home.makeDir("backup");
    transfer.packageSubDir = std::to_string(kUser);
    transfer.packageVersion = kVersion;
    transfer.progressListener = &listener;
    transfer.userAudioDir = home.makeDir("account/audio") + "/";
    transfer.userFileDir = home.makeDir("account/file") + "/";
    transfer.userImageDir = home.makeDir("account/image") + "/";
    transfer.userVideoDir = home.makeDir("account/video") + "/";
    home.makeDir("backup/qelbackup/1001/imfiles");
}

void TreeTest::makeMainDatabase() const {
    imsdk::dbUtils db;
    makeDatabase(db, mainDatabase(), key());
}
void TreeTest::makeBackDatabase() const {
    imsdk::dbUtils db;
    makeDatabase(db, backDatabase(), key());
}
void TreeTest::makePluginDatabase() const {
    imsdk::dbUtils db;
    makeDatabase(db, pluginDatabase(), key());
}

std::string TreeTest::main(const std::string& sql, int columns) const {
    return queryText(mainDatabase(), sql, columns, key());
}
std::string TreeTest::back(const std::string& sql, int columns) const {
    return queryText(backDatabase(), sql, columns, key());
}
std::string TreeTest::plugin(const std::string& sql, int columns) const {
    return queryText(pluginDatabase(), sql, columns, key());
}

std::string TreeTest::addDecrypted(const std::string& name, const std::string& text) const {
    return home.write("backup/qelbackup/1001/" + name + ".decrypt", text);
}

std::string TreeTest::addEncrypted(const std::string& name, const std::string& text) const {
    const std::string plain = home.write("plain", text);
    std::string path = tree(name);
    fs::create_directories(fs::path(path).parent_path());
    std::array<char, 256> error{};
    EXPECT_EQ(0, CAES().File_Aes_Go_Block(true, transfer.dbKey.c_str(), plain.c_str(), path.c_str(), error.data()))
        << error.data();
    return path;
}

std::string TreeTest::addAttachment(const std::string& name, const std::string& bytes) const {
    return home.write("backup/qelbackup/1001/imfiles/" + name, bytes);
}

std::vector<std::string> TreeTest::foldersInWalkOrder() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(tree(""))) {
        const std::string name = entry.path().filename().string();
        if (entry.is_directory() && name != "imfiles") names.push_back(name);
    }
    return names;
}

std::string TreeTest::skipReason(const std::string& what) const {
    for (const TransferReport::Skipped& skipped : transfer.report.skipped) {
        const std::size_t at = skipped.what.rfind(what);
        if (at != std::string::npos && at + what.size() == skipped.what.size()) return skipped.reason;
    }
    return {};
}

void TreeTest::expectWritable(const std::string& database) const {
    imsdk::dbUtils other;
    ASSERT_NE(0, other.open(database.c_str(), key())) << other.lastError();
    other.beginTransaction();
    EXPECT_FALSE(other.transactionFailed()) << other.lastError();
    other.endTransaction();
}

WorkingFolder::WorkingFolder(const std::string& path) : before_(fs::current_path().string()) {
    fs::current_path(path);
}
WorkingFolder::~WorkingFolder() {
    std::error_code ignored;
    fs::current_path(before_, ignored);
}

}  // namespace test
