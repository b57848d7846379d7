#include "transfer/tables/plugin_writer.h"

#include "transfer/tables/existing_rows.h"
#include "transfer/tables/plugin_tables.h"

namespace chattransfer {
namespace {

bool makePluginTable(imsdk::dbUtils& plugin, const char* name, const char* create, TransferReport& report) {
    if (tableExists(plugin, name) || plugin.excuteNonQuery(create) != 0) return true;
    report.skip(name, "the table could not be created: " + plugin.lastError());
    return false;
}

// Counts an insert whose result changes nothing else.
void countInsert(imsdk::dbUtils& plugin, imsdk::dbCommand& insert, long long& inserted, const char* what,
                 TransferReport& report) {
    if (plugin.excuteNonQuery(&insert) != 0) {
        ++inserted;
    } else {
        report.skip(what, "the database refused it: " + plugin.lastError());
    }
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
        countInsert(plugin, insert, report.notesInserted, "a note", report);
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
        countInsert(plugin, insert, report.roomsInserted, "a room", report);
    }
}

}  // namespace chattransfer
