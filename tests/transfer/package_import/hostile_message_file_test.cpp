// Message files that no client wrote: none of them may stop, block or crash the import of the files behind them.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "host/json/json_owner.h"
#include "tests/transfer/package_import/import_fixture.h"

namespace fs = std::filesystem;

namespace test {
namespace {

class HostileMessageFile : public ImportFixture {
protected:
    std::string path(int number = 0) const { return dir_.at(messageFile(number)); }

    std::string outcomeOf(const std::string& file) {
        writeFile(0, file);
        transfer_.msgMap.clear();
        transfer_.report = {};
        const unsigned code = transfer_.rdMsgFromFile();
        if (code == 0xff000024) return "other version";
        if (code != 0) return "another code";
        return reported("msg_0.mg") ? "passed over" : "read";
    }

    // File 0 is the broken one, file 1 a good one.
    void expectPassedOver() {
        writeFile(1, smallFile(5, 1));
        EXPECT_EQ(0U, transfer_.rdMsgFromFile());
        EXPECT_EQ("1", collectedIds(5));
        EXPECT_EQ(1U, transfer_.msgMap.size());
        EXPECT_EQ(std::vector<std::string>{"2 100 2/2"}, listener_.heard);
        EXPECT_EQ(1, transfer_.report.skippedCount);
        EXPECT_TRUE(reported("msg_0.mg"));
    }
};

TEST_F(HostileMessageFile, MayBeADirectory) {
    dir_.makeDir(messageFile(0));
    expectPassedOver();
}

TEST_F(HostileMessageFile, MayBeAFifoWithoutBlocking) {
    ASSERT_EQ(0, mkfifo(path().c_str(), 0600));
    expectPassedOver();
}

TEST_F(HostileMessageFile, MayBeASocket) {
    ASSERT_EQ(0, mknod(path().c_str(), S_IFSOCK | 0600, 0));
    expectPassedOver();
}

TEST_F(HostileMessageFile, MayBeUnreadable) {
    writeFile(0, smallFile(5, 2));
    fs::permissions(path(), fs::perms::none);
    fs::permissions(dir_.path(), fs::perms(0755));
    writeFile(1, "");
    fs::permissions(path(1), fs::perms(0666));
    const OrdinaryUser user;
    expectPassedOver();
}

TEST_F(HostileMessageFile, MayBeEmpty) {
    writeFile(0, "");
    expectPassedOver();
}

TEST_F(HostileMessageFile, MayBeASymbolicLink) {
    const std::string secret = dir_.write("elsewhere.mg", smallFile(5, 99));
    fs::create_symlink(secret, path());
    expectPassedOver();
}

TEST_F(HostileMessageFile, MayBeALinkToADevice) {
    fs::create_symlink("/dev/zero", path());
    expectPassedOver();
}

TEST_F(HostileMessageFile, IsMissingWhenItIsADanglingLink) {
    fs::create_symlink(dir_.at("nowhere"), path());
    writeFile(1, smallFile(5, 1));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_TRUE(transfer_.msgMap.empty());
}

std::string nested(int levels) {
    return std::string(static_cast<std::size_t>(levels), '[') + std::string(static_cast<std::size_t>(levels), ']');
}

TEST_F(HostileMessageFile, MayBeAnArrayOf2000Levels) {
    writeFile(0, nested(2000));
    expectPassedOver();
}

TEST_F(HostileMessageFile, MayBeAnArrayOf3000Levels) {
    writeFile(0, nested(3000));
    expectPassedOver();
}

TEST_F(HostileMessageFile, MayBeAMillionLevelsDeepAndUnfinished) {
    writeFile(0, std::string(1'000'000, '['));
    expectPassedOver();
}

TEST_F(HostileMessageFile, IsReadWithAValueOf2000LevelsBesideItsMessages) {
    const imsdk::st_dbMessageBean message = readOnly(fileJson(dayJson(messageJson(5, 1, R"(,"x":)" + nested(2000)))));
    EXPECT_EQ(1, message.msgID);
}

TEST_F(HostileMessageFile, IsPassedOverWithAValueOf3000LevelsBesideItsMessages) {
    writeFile(0, fileJson(dayJson(messageJson(5, 2, R"(,"x":)" + nested(3000)))));
    expectPassedOver();
}

TEST_F(HostileMessageFile, IsPassedOverWhereverItIsCut) {
    const std::string whole = fileJson(dayJson(messageJson(5, 2, R"(,"message":"h\u00e9llo","sendTime":12.5)")));
    writeFile(1, smallFile(5, 1));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        writeFile(0, whole.substr(0, length));
        transfer_.msgMap.clear();
        EXPECT_EQ(0U, transfer_.rdMsgFromFile()) << length;
        EXPECT_EQ("1", collectedIds(5)) << length;
    }
}

// What the import has to make of a text, by the JSON library.
std::string expectedOutcome(const std::string& text) {
    const tools::JsonDocument document(json_parse_string(text.c_str()));
    const JSON_Object* file = json_value_get_object(document.get());
    if (file == nullptr) return "passed over";
    const char* version = json_object_get_string(file, "version");
    if (version == nullptr || std::string(version) != "1.0") return "other version";
    return json_object_get_array(file, "msgs") != nullptr ? "read" : "passed over";
}

TEST_F(HostileMessageFile, IsReadPassedOverOrRefusedAsTheJsonLibrarySeesItWithAnyByteChanged) {
    const std::string whole = fileJson(dayJson(messageJson(5, 2, R"(,"message":"h\u00e9")"), R"(,"#limitRange":[1])"));
    for (std::size_t i = 0; i < whole.size(); ++i) {
        for (const char byte : {'\0', '"', '{', ']', '9', '-', '\\', '\xff'}) {
            std::string broken = whole;
            broken[i] = byte;
            EXPECT_EQ(expectedOutcome(broken), outcomeOf(broken)) << broken;
        }
    }
}

TEST_F(HostileMessageFile, IsPassedOverWithANulByte) {
    std::string file = smallFile(5, 2);
    file[file.size() / 2] = '\0';
    writeFile(0, file);
    expectPassedOver();
}

TEST_F(HostileMessageFile, IsPassedOverInUtf16) {
    std::string wide = "\xFF\xFE";
    for (const char c : smallFile(5, 2))
        wide += std::string{c, '\0'};
    writeFile(0, wide);
    expectPassedOver();
}

TEST_F(HostileMessageFile, IsReadWithAByteOrderMark) {
    EXPECT_EQ(1, readOnly("\xEF\xBB\xBF" + smallFile(5, 1)).msgID);
}

TEST_F(HostileMessageFile, IsReadWithBlanksAround) {
    EXPECT_EQ(1, readOnly("\r\n\t " + smallFile(5, 1) + " \n").msgID);
}

TEST_F(HostileMessageFile, IsReadUpToItsObjectWhenTextFollows) {
    EXPECT_EQ(1, readOnly(smallFile(5, 1) + "}] trailing").msgID);
}

TEST_F(HostileMessageFile, IsPassedOverWithCommentsOrSingleQuotes) {
    writeFile(0, "/* comment */ " + smallFile(5, 2));
    writeFile(1, "{'version':'1.0','msgs':[]}");
    writeFile(2, smallFile(5, 1));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_EQ("1", collectedIds(5));
}

}  // namespace
}  // namespace test
