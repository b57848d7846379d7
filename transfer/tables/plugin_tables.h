// The tables of the plugin database, "im_note" and "im_room": their schemas and their inserts. docs/plugin-database.md
// describes them for readers.
#pragma once

#include "host/dbUtils.h"
#include "transfer/records.h"

namespace chattransfer {

inline constexpr const char* kNoteTable = "im_note";
inline constexpr const char* kRoomTable = "im_room";

/// The blanks inside are part of the schema texts that clients compare.
inline constexpr const char* kCreateNoteTable =
    "create table im_note (_id INTEGER PRIMARY KEY AUTOINCREMENT, lastChgTime BIGINT ,sendUserId BIGINT, targetID "
    "BIGINT,"
    "type TINYINT,content VARCHAR(9216), title VARCHAR(256),_key VARCHAR(256),isArchive TINYINT,isReminder TINYINT,"
    "rmdTime BIGINT)";
inline constexpr const char* kCreateRoomTable =
    "create table im_room(roomID INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT, roomName VARCHAR(128), "
    "roomMember VARCHAR(8000), top TINYINT,                     portraitUrl VARCHAR(256), backupOne BIGINT, "
    "backupTwo VARCHAR(256), backupThree VARCHAR(512));";

/// "targetId" and "portraitURL" are the tables' targetID and portraitUrl: SQL column names ignore case.
inline constexpr const char* kInsertNote =
    "insert into im_note(lastChgTime,sendUserId,targetId,type,content,title,_key,isArchive,isReminder,rmdTime) "
    "values(?,?,?,?,?,?,?,?,?,?)";
inline constexpr const char* kInsertRoom =
    "insert into im_room(roomName, roomMember, top, portraitURL) values(?,?,?,?)";

/// Bind the placeholders of kInsertNote and kInsertRoom to a record, which must outlive the execution. A tree knows
/// neither titles and keys of notes nor portraits of rooms: those columns get empty texts.
void bindNote(imsdk::dbCommand& command, const st_noteTrans& note);
void bindRoom(imsdk::dbCommand& command, const st_roomTrans& room);

}  // namespace chattransfer
