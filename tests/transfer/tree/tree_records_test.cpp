// readNoteFromFileNJ and readRoomFromFileNJ: notes and rooms of a tree into memory.
#include <filesystem>

#include "host/tools.h"
#include "tests/support/json_text.h"
#include "tests/transfer/tree/tree_fixture.h"

namespace fs = std::filesystem;
using test::code;
using test::exists;
using test::recordFile;

namespace {

class TreeRecords : public test::TreeTest {
protected:
    unsigned readNotes() { return code(transfer.readNoteFromFileNJ()); }
    unsigned readRooms() { return code(transfer.readRoomFromFileNJ()); }

    // Reads the one note, or room, of a file.
    const st_noteTrans& note(const std::string& object) {
        addDecrypted("x.nt", recordFile("note", {object}));
        EXPECT_EQ(0U, readNotes());
        return transfer.notes.at(0);
    }
    const st_roomTrans& room(const std::string& object) {
        addDecrypted("x.rm", recordFile("room", {object}));
        EXPECT_EQ(0U, readRooms());
        return transfer.rooms.at(0);
    }

    std::string contents() const {
        std::string text;
        for (const st_noteTrans& one : transfer.notes)
            text += one.content;
        return text;
    }
    std::string names() const {
        std::string text;
        for (const st_roomTrans& one : transfer.rooms)
            text += one.roomName;
        return text;
    }
};

std::string withContent(const std::string& content) {
    return R"({"content": ")" + content + "\"}";
}
std::string withName(const std::string& name) {
    return R"({"name": ")" + name + "\"}";
}

// --- Notes

TEST_F(TreeRecords, NotesKeepEveryField) {
    const st_noteTrans& read = note(R"({"sendUserID": 9223372036854775807, "targetID": -5, "type": 1, "content": "milk",
        "isReminder": 1, "isActive": 2, "rmdTime": 1620550000123, "lastChgTime": 9007199254740993})");
    EXPECT_EQ(9223372036854775807LL, read.sendUserId);
    EXPECT_EQ(-5, read.targetID);
    EXPECT_EQ(1, read.type);
    EXPECT_EQ("milk", read.content);
    EXPECT_EQ(1, read.isReminder);
    EXPECT_EQ(2, read.isArchive);
    EXPECT_EQ(1620550000123, read.rmdTime);
    EXPECT_EQ(9007199254740993, read.lastChgTime);
}

TEST_F(TreeRecords, NotesTakeTheArchiveFlagFromIsActive) {
    EXPECT_EQ(1, note(R"({"isActive": 1, "isArchive": 5})").isArchive);
}

TEST_F(TreeRecords, NotesTakeMissingKeysAsZeroAndEmpty) {
    addDecrypted("x.nt", recordFile("note", {"{}", R"({"content": "c", "type": 1, "rmdTime": 2})"}));
    readNotes();
    const st_noteTrans& empty = transfer.notes.at(1);
    EXPECT_TRUE(empty.sendUserId == 0 && empty.targetID == 0 && empty.type == 0 && empty.isReminder == 0);
    EXPECT_TRUE(empty.isArchive == 0 && empty.rmdTime == 0 && empty.lastChgTime == 0 && empty.content.empty());
}

TEST_F(TreeRecords, NotesTruncateFlagsToEightBits) {
    const st_noteTrans& read = note(R"({"type": 259, "isReminder": 255, "isActive": -1.9})");
    EXPECT_EQ(3, read.type);
    EXPECT_EQ(-1, read.isReminder);
    EXPECT_EQ(-1, read.isArchive);
}

TEST_F(TreeRecords, NotesReadValuesOfAnotherTypeAsMissing) {
    const st_noteTrans& read =
        note(R"({"type": "3", "content": 5, "rmdTime": [], "sendUserID": {}, "isActive": true})");
    EXPECT_TRUE(read.type == 0 && read.content.empty() && read.rmdTime == 0 && read.sendUserId == 0);
    EXPECT_EQ(0, read.isArchive);
}

TEST_F(TreeRecords, NotesStandInReverseOrderOfTheirFile) {
    addDecrypted("x.nt", recordFile("note", {withContent("A"), withContent("B"), withContent("C")}));
    readNotes();
    EXPECT_EQ("CBA", contents());
}

TEST_F(TreeRecords, NotesOfSeveralFilesFollowEachOther) {
    addDecrypted("1/x.nt", recordFile("note", {withContent("a"), withContent("b")}));
    addDecrypted("2/x.nt", recordFile("note", {withContent("c"), withContent("d")}));
    readNotes();
    EXPECT_EQ(foldersInWalkOrder()[0] == "1" ? "badc" : "dcba", contents());
}

TEST_F(TreeRecords, NotesReplaceThoseReadBefore) {
    note(withContent("A"));
    readNotes();
    EXPECT_EQ("A", contents());
    fs::remove(tree("x.nt.decrypt"));
    EXPECT_EQ(0U, readNotes());
    EXPECT_EQ("", contents());
}

TEST_F(TreeRecords, NotesOfAMissingTreeAreNone) {
    fs::remove_all(tree(""));
    EXPECT_EQ(0U, readNotes());
}

TEST_F(TreeRecords, NotesStopAtAFileOfAnotherVersion) {
    addDecrypted("1/x.nt", recordFile("note", {withContent("A")}));
    addDecrypted("2/x.nt", recordFile("note", {withContent("A")}));
    addDecrypted(foldersInWalkOrder()[1] + "/x.nt", recordFile("note", {withContent("B")}, "8.0"));
    EXPECT_EQ(test::kWrongVersion, readNotes());
    EXPECT_EQ("A", contents());
    EXPECT_EQ("has another version than 7.1", skipReason("x.nt.decrypt"));
}

TEST_F(TreeRecords, NotesPassOverWhatHasAnotherShape) {
    const char* const files[] = {
        R"({"version": "7.1"})",
        R"({"version": "7.1", "note": {}})",
        R"({"version": "7.1", "note": "text"})",
        R"({"version": "7.1", "note": []})",
        R"({"version": "7.1", "note": [1, "a", null, [], [{"content": "x"}]]})",
        "not JSON",
        "",
    };
    for (const char* file : files) {
        addDecrypted("x.nt", file);
        EXPECT_EQ(0U, readNotes()) << file;
        EXPECT_TRUE(transfer.notes.empty()) << file;
    }
    EXPECT_EQ("is not JSON", skipReason("x.nt.decrypt"));
}

TEST_F(TreeRecords, NotesNeverComeOverALinkOrFromAFifo) {
    test::makeLink(home.write("outside", recordFile("note", {withContent("A")})), tree("a.nt.decrypt"));
    test::makeFifo(tree("b.nt.decrypt"));
    EXPECT_EQ(0U, readNotes());
    EXPECT_EQ("", contents());
    EXPECT_EQ("is not a regular file", skipReason("a.nt.decrypt"));
}

TEST_F(TreeRecords, NotesAreDecrypted) {
    useKey("key");
    addEncrypted("deep/er/x.nt", recordFile("note", {withContent("A")}));
    EXPECT_EQ(0U, readNotes());
    EXPECT_EQ("A", contents());
    EXPECT_EQ("x.nt.decrypt", test::listing(tree("deep/er")));
}

TEST_F(TreeRecords, NotesBringTheirFiles) {
    transfer.imFileDir = tree("imfiles/");
    addAttachment("a.pdf", "file");
    addAttachment("b.amr", "sound");
    const std::string file = R"({"type": 6, "content": )" + test::quoted(R"({"url": "a.pdf"})") + "}";
    const std::string text = R"({"type": 2, "content": )" + test::quoted(R"({"mediaUrl": "b.amr"})") + "}";
    addDecrypted("x.nt", recordFile("note", {file, text}));
    readNotes();
    EXPECT_EQ("file", test::readFile(user("file/a.pdf")));
    EXPECT_TRUE(exists(tree("imfiles/b.amr")));
}

TEST_F(TreeRecords, NotesBringTheFilesOfEveryTypeThatCarriesThem) {
    transfer.imFileDir = tree("imfiles/");
    const std::pair<int, const char*> contents[] = {{3, R"({"mediaUrl": "a"})"},
                                                    {5, R"({"mainUrl": "b", "thumbUrl": "c"})"},
                                                    {6, R"({"url": "d"})"},
                                                    {28, R"({"nine": [{"mainUrl": "e", "thumbUrl": "f"}]})"},
                                                    {89, R"({"preImgUrl": "g", "fileUrl": "h"})"}};
    std::vector<std::string> notes;
    for (const auto& [type, content] : contents)
        notes.push_back(R"({"type": )" + std::to_string(type) + R"(, "content": )" + test::quoted(content) + "}");
    for (const char* name : {"a", "b", "c", "d", "e", "f", "g", "h"})
        addAttachment(name, name);
    addDecrypted("x.nt", recordFile("note", notes));
    EXPECT_EQ(0U, readNotes());
    EXPECT_EQ(8, transfer.report.attachmentsDone);
    EXPECT_EQ("", test::listing(tree("imfiles")));
}

// --- Rooms

TEST_F(TreeRecords, RoomsKeepNameAndTop) {
    const st_roomTrans& read = room(R"({"name": "Book club", "top": 1, "targetID": []})");
    EXPECT_EQ("Book club", read.roomName);
    EXPECT_EQ(1, read.top);
    EXPECT_EQ("", read.roomMember);
}

TEST_F(TreeRecords, RoomsListTheirMembersInReverseOrder) {
    EXPECT_EQ("3;2;1", room(R"({"targetID": [1, 2, 3]})").roomMember);
}

TEST_F(TreeRecords, RoomsKeepMembersOfNineteenDigits) {
    EXPECT_EQ("-9223372036854775808;9223372036854775807",
              room(R"({"targetID": [9223372036854775807, -9223372036854775808]})").roomMember);
}

TEST_F(TreeRecords, RoomsTruncateTopToEightBits) {
    EXPECT_EQ(-1, room(R"({"top": 255})").top);
    EXPECT_EQ(4, room(R"({"top": 260.7})").top);
}

TEST_F(TreeRecords, RoomsInheritNothingFromEachOther) {
    addDecrypted("x.rm", recordFile("room", {"{}", R"({"name": "full", "top": 1, "targetID": [1, 2]})"}));
    EXPECT_EQ(0U, readRooms());
    EXPECT_EQ("full", transfer.rooms.at(0).roomName);
    EXPECT_EQ("", transfer.rooms.at(1).roomName);
    EXPECT_EQ("", transfer.rooms.at(1).roomMember);
    EXPECT_EQ(0, transfer.rooms.at(1).top);
}

TEST_F(TreeRecords, RoomsReadValuesOfAnotherTypeAsMissing) {
    const st_roomTrans& read = room(R"({"name": 5, "top": "1", "targetID": {"a": 1}})");
    EXPECT_TRUE(read.roomName.empty() && read.roomMember.empty() && read.top == 0);
    EXPECT_EQ("4;0;1", room(R"({"targetID": [1, "two", 4]})").roomMember);
}

TEST_F(TreeRecords, RoomsStandInReverseOrderOfTheirFile) {
    addDecrypted("x.rm", recordFile("room", {withName("A"), withName("B"), withName("C")}));
    readRooms();
    EXPECT_EQ("CBA", names());
}

TEST_F(TreeRecords, RoomsReplaceThoseReadBefore) {
    room(withName("A"));
    readRooms();
    EXPECT_EQ("A", names());
}

TEST_F(TreeRecords, RoomsNeedATree) {
    transfer.rooms.resize(1);
    fs::remove_all(tree(""));
    EXPECT_EQ(test::kMissing, readRooms());
    EXPECT_EQ(1U, transfer.rooms.size());
}

TEST_F(TreeRecords, RoomsStopAtAFileOfAnotherVersion) {
    addDecrypted("1/x.rm", recordFile("room", {withName("A")}));
    addDecrypted("2/x.rm", recordFile("room", {withName("A")}));
    addDecrypted(foldersInWalkOrder()[1] + "/x.rm", recordFile("room", {withName("B")}, "8.0"));
    EXPECT_EQ(test::kWrongVersion, readRooms());
    EXPECT_EQ("A", names());
}

TEST_F(TreeRecords, RoomsPassOverWhatHasAnotherShape) {
    for (const char* file : {R"({"version": "7.1"})", R"({"version": "7.1", "room": 5})", "not JSON",
                             R"({"version": "7.1", "room": [1, "a", null, []]})"}) {
        addDecrypted("x.rm", file);
        EXPECT_EQ(0U, readRooms()) << file;
        EXPECT_TRUE(transfer.rooms.empty()) << file;
    }
}

}  // namespace
