#include "transfer/tables/plugin_tables.h"

namespace chattransfer {

void bindNote(imsdk::dbCommand& command, const st_noteTrans& note) {
    command.bindParam(1, note.lastChgTime);
    command.bindParam(2, note.sendUserId);
    command.bindParam(3, note.targetID);
    command.bindParam(4, static_cast<int>(note.type));
    command.bindParam(5, note.content.c_str());
    command.bindParam(6, "");
    command.bindParam(7, "");
    command.bindParam(8, static_cast<int>(note.isArchive));
    command.bindParam(9, static_cast<int>(note.isReminder));
    command.bindParam(10, note.rmdTime);
}

void bindRoom(imsdk::dbCommand& command, const st_roomTrans& room) {
    command.bindParam(1, room.roomName.c_str());
    command.bindParam(2, room.roomMember.c_str());
    command.bindParam(3, static_cast<int>(room.top));
    command.bindParam(4, "");
}

}  // namespace chattransfer
