#include "transfer/tables/plugin_writer.h"

#include "transfer/tables/existing_rows.h"
#include "transfer/tables/plugin_tables.h"

namespace chattransfer {
namespace {

bool makePluginTable(imsdk::dbUtils& plugin, const char* name, const char* create, TransferReport& report) {
    if (tableExists(plugin, name) || plugin.excuteNonQuery(create) != 0) return true;
    report.skip(name, Omission::tableNotCreated, plugin.lastError());
    return false;
}

}  // namespace

ErrorCode makePluginTables(imsdk::dbUtils& plugin, TransferReport& report) {
    const bool tablesThere = makePluginTable(plugin, kNoteTable, kCreateNoteTable, report) &&
                             makePluginTable(plugin, kRoomTable, kCreateRoomTable, report);
    return tablesThere ? kSuccess : kDatabaseFailed;
}

void writeNotes(imsdk::dbUtils& plugin, const std::vector<st_noteTrans>& notes, TransferReport& report) {
    imsdk::dbCommand insert(&plugin, kInsertNote);
    for (const st_noteTrans& note : notes) {
        if (countNotes(plugin, note) != 0) {
            ++report.notesDuplicate;
            continue;
        }
        bindNote(insert, note);
        if (plugin.excuteNonQuery(&insert) != 0) {
            ++report.notesInserted;
        } else {
            report.skip("a note", Omission::noteRefused, plugin.lastError());
        }
    }
}

void writeRooms(imsdk::dbUtils& plugin, const std::vector<st_roomTrans>& rooms, TransferReport& report) {
    imsdk::dbCommand insert(&plugin, kInsertRoom);
    for (const st_roomTrans& room : rooms) {
        if (countRooms(plugin, room.roomName, room.roomMember) != 0) {
            ++report.roomsDuplicate;
            continue;
        }
        bindRoom(insert, room);
        if (plugin.excuteNonQuery(&insert) != 0) {
            ++report.roomsInserted;
        } else {
            report.skip("a room", Omission::roomRefused, plugin.lastError());
        }
    }
}

}  // namespace chattransfer
