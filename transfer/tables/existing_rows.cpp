#include "transfer/tables/existing_rows.h"

#include "host/base/fixed_text.h"
#include "transfer/tables/message_table.h"

namespace chattransfer {
namespace {

// Texts go into statements as they are: one with an apostrophe ends its literal early and would ask something else.
bool endsLiteral(const std::string& text) {
    return text.find('\'') != std::string::npos;
}

}  // namespace

int countMessages(imsdk::dbUtils& db, const std::string& table, long long msgID) {
    // Hosts know this limit: a name that passes it has no messages.
    const tools::FixedText<100> query("select count(*) as cnt from  %s  where msgID = %lld", table.c_str(), msgID);
    return countOf(db, query);
}

int countNotes(imsdk::dbUtils& plugin, const st_noteTrans& note) {
    // Hosts know this limit; seven numbers fit by far.
    const tools::FixedText<9126> query(
        "select count(*) as cnt from im_note where sendUserId = %lld and targetID = %lld and type = %d"
        " and isReminder = %d and rmdTime = %lld and isArchive = %d and lastChgTime = %lld",
        note.sendUserId, note.targetID, note.type, note.isReminder, note.rmdTime, note.isArchive, note.lastChgTime);
    return countOf(plugin, query);
}

int countRooms(imsdk::dbUtils& plugin, const std::string& roomName, const std::string& roomMember) {
    if (endsLiteral(roomName) || endsLiteral(roomMember)) return 0;
    // Hosts know this limit: a room with more members counts as new.
    const tools::FixedText<512> query("select count(*) as cnt from im_room where roomName = '%s' and roomMember = '%s'",
                                      roomName.c_str(), roomMember.c_str());
    return countOf(plugin, query);
}

bool tableExists(imsdk::dbUtils& db, const std::string& name) {
    if (endsLiteral(name)) return false;
    // Hosts know this limit: a name that passes it is no table's.
    const tools::FixedText<256> query("select * from sqlite_master where type = 'table' and name = '%s'", name.c_str());
    return db.isExistTable(query.text()) != 0;
}

}  // namespace chattransfer
