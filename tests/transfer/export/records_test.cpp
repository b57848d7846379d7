// The records in transit.
#include <climits>
#include <type_traits>

#include "tests/transfer/export/account_fixture.h"

namespace {

using imsdk::st_dbMessageBean;
using imsdk::st_dbReContactBean;

static_assert(std::is_same_v<decltype(st_dbMessageBean::toUserID), long long>);
static_assert(std::is_same_v<decltype(st_dbMessageBean::msgType), int>);
static_assert(std::is_same_v<decltype(st_dbMessageBean::extraValue), long long>);
static_assert(std::is_same_v<decltype(st_dbReContactBean::type), signed char>);
static_assert(std::is_same_v<decltype(st_dbReContactBean::top), signed char>);
static_assert(std::is_same_v<decltype(st_dbReContactBean::msgType), int>);
static_assert(std::is_same_v<decltype(st_noteTrans::type), signed char>);
static_assert(std::is_same_v<decltype(st_noteTrans::isReminder), signed char>);
static_assert(std::is_same_v<decltype(st_noteTrans::isArchive), signed char>);
static_assert(std::is_same_v<decltype(st_roomTrans::top), long long>);

TEST(Records, AnEmptyBodyCopiesToAnEmptyBody) {
    const st_dbMessageBean source;
    const st_dbMessageBean copy = source;
    EXPECT_EQ("", copy.body);
}

TEST(Records, AnAppendedMessageSharesNothingWithItsSource) {
    st_dbMessageBean source = test::messageOn(2019, 3, 7, 1, 0, "a text longer than any small-string buffer is");
    source.extraText = "extra";
    std::vector<st_dbMessageBean> messages;
    messages.push_back(source);
    source.body[0] = 'X';
    source.extraText.clear();
    source.msgID = 2;
    EXPECT_EQ("a text longer than any small-string buffer is", messages[0].body);
    EXPECT_EQ("extra", messages[0].extraText);
    EXPECT_EQ(1, messages[0].msgID);
}

TEST(Records, AppendedContactsNotesAndRoomsShareNothingEither) {
    st_dbReContactBean contact;
    contact.name = "before";
    st_noteTrans note;
    note.content = "before";
    st_roomTrans room;
    room.roomMember = "before";
    const std::vector<st_dbReContactBean> contacts(1, contact);
    const std::vector<st_noteTrans> notes(1, note);
    const std::vector<st_roomTrans> rooms(1, room);
    contact.name = note.content = room.roomMember = "after";
    EXPECT_EQ("before", contacts[0].name);
    EXPECT_EQ("before", notes[0].content);
    EXPECT_EQ("before", rooms[0].roomMember);
}

TEST(Records, FieldsForTheHostTravelWithACopy) {
    st_dbMessageBean source;
    source.extraValue = LLONG_MAX;
    source.extraValue2 = LLONG_MIN;
    source.extraText = "for the host";
    const st_dbMessageBean copy = source;
    EXPECT_EQ(LLONG_MAX, copy.extraValue);
    EXPECT_EQ(LLONG_MIN, copy.extraValue2);
    EXPECT_EQ("for the host", copy.extraText);
}

class NoteFlags : public test::AccountTest {};

TEST_F(NoteFlags, OfTwoHundredAndFiftyFiveIsMinusOne) {
    test::runSql(pluginPath(), {"create table im_note(sendUserId, targetID, type, content, isReminder, rmdTime, "
                                "isArchive, lastChgTime)",
                                "insert into im_note values(1, 2, -1, 'text', -1, 3, -1, 4)",
                                "insert into im_note values(1, 2, 255, 'text', 255, 3, 255, 4)"});
    ASSERT_NE(0, transfer.kabDbOpen());
    const auto stored255 = static_cast<signed char>(255);
    st_noteTrans note{1, 2, stored255, "text", stored255, 3, stored255, 4};
    EXPECT_EQ(1, transfer.isNoteExsit(note));
    test::runSql(pluginPath(), {"delete from im_note where type = -1"});
    EXPECT_EQ(0, transfer.isNoteExsit(note));
}

}  // namespace
