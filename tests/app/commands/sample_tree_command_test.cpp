#include <filesystem>
#include <map>
#include <set>

#include "host/json/json_owner.h"
#include "tests/app/fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;

class SampleTreeCommand : public CommandTest {
protected:
    Outcome sampleTree(const std::string& folder, const Arguments& more = {}) const {
        const Arguments arguments = {"sample-tree", "--to",       at(folder), "--user", kUser, "--conversations",
                                     "4",           "--messages", "300",      "--days", "5"};
        return chatTransfer(joined(arguments, more));
    }

    void makeTree(const std::string& folder) const { ASSERT_EXIT_CODE(0, sampleTree(folder)); }

    // The bytes of every file by its path below the folder.
    std::map<std::string, std::string> filesOf(const std::string& folder) const {
        std::map<std::string, std::string> files;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(at(folder))) {
            if (entry.is_regular_file()) {
                files[fs::relative(entry.path(), at(folder)).string()] = readFile(entry.path().string());
            }
        }
        return files;
    }

    // The types of the notes, or of the messages of all files.
    static void collectTypes(const JSON_Array* records, const char* key, std::set<int>& types) {
        for (size_t i = 0; i < json_array_get_count(records); ++i)
            types.insert(static_cast<int>(json_object_get_number(json_array_get_object(records, i), key)));
    }
};

TEST_F(SampleTreeCommand, IsTheSameForTheSameSeed) {
    makeTree("one");
    makeTree("two");
    EXPECT_EQ(filesOf("one"), filesOf("two"));
    EXPECT_LT(20U, filesOf("one").size());
}

TEST_F(SampleTreeCommand, IsAnotherForAnotherSeed) {
    makeTree("one");
    ASSERT_EXIT_CODE(0, sampleTree("two", {"--seed", "2"}));
    EXPECT_NE(filesOf("one"), filesOf("two"));
}

TEST_F(SampleTreeCommand, HasMessagesOfEveryAttachmentType) {
    makeTree("tree");
    std::set<int> types;
    for (const auto& [name, text] : filesOf("tree")) {
        if (fs::path(name).extension() != ".mg") continue;
        const tools::JsonDocument document(json_parse_string(text.c_str()));
        const JSON_Array* days = json_object_get_array(json_value_get_object(document.get()), "msgs");
        for (size_t i = 0; i < json_array_get_count(days); ++i)
            collectTypes(json_object_get_array(json_array_get_object(days, i), "msgs"), "messageType", types);
    }
    EXPECT_EQ((std::set<int>{1, 3, 5, 6, 28, 89}), types);
}

TEST_F(SampleTreeCommand, HasNotesOfEveryType) {
    makeTree("tree");
    const tools::JsonDocument document(json_parse_string(readFile(at("tree/notes.nt")).c_str()));
    std::set<int> types;
    collectTypes(json_object_get_array(json_value_get_object(document.get()), "note"), "type", types);
    EXPECT_EQ((std::set<int>{1, 3, 5, 6, 28, 89}), types);
}

TEST_F(SampleTreeCommand, NamesNotesAttachmentsUnderTheKeysOfNotes) {
    makeTree("tree");
    const std::string notes = readFile(at("tree/notes.nt"));
    for (const char* key : {"mediaUrl", "url", "mainUrl", "thumbUrl", "nine", "preImgUrl", "fileUrl"})
        EXPECT_SAYS("\\\"" + std::string(key) + "\\\":", notes);
}

TEST_F(SampleTreeCommand, HoldsRealFiles) {
    makeTree("tree");
    std::map<std::string, std::string> beginnings;
    for (const auto& [name, bytes] : filesOf("tree"))
        beginnings[fs::path(name).extension().string()] = bytes.substr(0, 12);
    EXPECT_SAYS("RIFF", beginnings[".wav"]);
    EXPECT_SAYS("\x89PNG", beginnings[".png"]);
    EXPECT_SAYS("ftyp", beginnings[".mp4"]);
    EXPECT_SAYS("%PDF", beginnings[".pdf"]);
}

TEST_F(SampleTreeCommand, SplitsConversationsIntoFilesOfTheAskedSize) {
    const Outcome run = sampleTree("tree", {"--per-file", "10"});
    ASSERT_EXIT_CODE(0, run);
    long long files = 0;
    for (const auto& [name, text] : filesOf("tree"))
        files += fs::path(name).extension() == ".mg" ? 1 : 0;
    EXPECT_LE(30, files);
    EXPECT_EQ(std::to_string(files), rowOf(run.out, "Message files"));
}

TEST_F(SampleTreeCommand, MarksEveryFileWithTheVersion) {
    ASSERT_EXIT_CODE(0, sampleTree("tree", {"--package-version", "7.2"}));
    for (const char* name : {"contacts.ct", "notes.nt", "rooms.rm"})
        EXPECT_SAYS("\"version\":\"7.2\"", readFile(at(std::string("tree/") + name)));
}

TEST_F(SampleTreeCommand, ShowsItsFilesToTheirOwnerOnly) {
    makeTree("tree");
    EXPECT_EQ(0700U, permissionsOf(at("tree")));
    EXPECT_EQ(0600U, permissionsOf(at("tree/contacts.ct")));
}

TEST_F(SampleTreeCommand, NeverWritesIntoAFolderThatIsNotEmpty) {
    dir_.write("tree/mine.txt", "mine");
    expectFailure(sampleTree("tree"), {"is not empty"});
    EXPECT_EQ("mine.txt", listing(at("tree")));
}

TEST_F(SampleTreeCommand, TakesOnlyANumberAsTheUser) {
    for (const char* user : {"me", "0", "-5", "9007199254740993"})
        EXPECT_EXIT_CODE(2, chatTransfer({"sample-tree", "--to", at("tree"), "--user", user}));
    EXPECT_FALSE(exists(at("tree")));
}

TEST_F(SampleTreeCommand, MakesConversationsThatNoImportCutsBack) {
    ASSERT_EXIT_CODE(0, chatTransfer({"sample-tree", "--to", at("tree"), "--user", kUser, "--conversations", "4",
                                      "--messages", "15000", "--days", "5"}));
    const Outcome run = chatTransfer({"inspect", at("tree"), "--user", kUser, "--json"});
    const tools::JsonDocument document(json_parse_string(run.out.c_str()));
    const JSON_Array* conversations = json_object_get_array(json_value_get_object(document.get()), "conversations");
    ASSERT_EQ(4U, json_array_get_count(conversations));
    for (size_t i = 0; i < 4; ++i)
        EXPECT_GE(4000, json_object_get_number(json_array_get_object(conversations, i), "messages"));
}

}  // namespace
}  // namespace test
