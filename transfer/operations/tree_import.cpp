// Tree import: decrypts the files of a per-conversation tree and imports its messages, recent contacts, notes and
// rooms.
#include <cstdio>

#include "host/tools.h"
#include "transfer/attachments/tree_attachments.h"
#include "transfer/base/progress_report.h"
#include "transfer/dbTrans.h"
#include "transfer/format/tree_format.h"
#include "transfer/tables/conversation_writer.h"
#include "transfer/tables/message_trimming.h"
#include "transfer/tables/one_transaction.h"
#include "transfer/tables/plugin_tables.h"
#include "transfer/tree/tree_messages.h"
#include "transfer/tree/tree_records.h"
#include "transfer/tree/tree_walk.h"

using chattransfer::asInt;

namespace {

bool treeExists(const dbTrans& transfer) {
    return tools::fileExist(chattransfer::treeRoot(transfer).c_str());
}

// Points the transfer object to the user's tree and lists its message files.
std::vector<std::string> openTree(dbTrans& transfer) {
    transfer.msgFileDir = chattransfer::treeRoot(transfer);
    transfer.imFileDir = transfer.msgFileDir + chattransfer::kTreeAttachmentsFolder;
    std::vector<std::string> paths;
    transfer.getfiles(transfer.msgFileDir, paths, chattransfer::kMessageExtension);
    return paths;
}

bool makePluginTable(dbTrans& transfer, std::string name, const char* create) {
    if (transfer.isTableExsit(name.data()) || transfer.pluginDb.excuteNonQuery(create) != 0) return true;
    transfer.report.skip(name, "the table could not be created: " + transfer.pluginDb.lastError());
    return false;
}

// Counts an insert whose result changes nothing else.
void countInsert(dbTrans& transfer, imsdk::dbCommand& insert, long long& inserted, const char* what) {
    if (transfer.pluginDb.excuteNonQuery(&insert) != 0) {
        ++inserted;
    } else {
        transfer.report.skip(what, "the database refused it: " + transfer.pluginDb.lastError());
    }
}

void writeNotes(dbTrans& transfer) {
    imsdk::dbCommand insert(&transfer.pluginDb, chattransfer::kInsertNote);
    for (st_noteTrans& note : transfer.notes) {
        if (transfer.isNoteExsit(note) != 0) {
            ++transfer.report.notesDuplicate;
            continue;
        }
        chattransfer::bindNote(insert, note);
        countInsert(transfer, insert, transfer.report.notesInserted, "a note");
    }
}

void writeRooms(dbTrans& transfer) {
    imsdk::dbCommand insert(&transfer.pluginDb, chattransfer::kInsertRoom);
    for (st_roomTrans& room : transfer.rooms) {
        if (transfer.isRoomExsit(room.roomName, room.roomMember) != 0) {
            ++transfer.report.roomsDuplicate;
            continue;
        }
        chattransfer::bindRoom(insert, room);
        countInsert(transfer, insert, transfer.report.roomsInserted, "a room");
    }
}

}  // namespace

int dbTrans::getfiles(std::string dir, std::vector<std::string>& files, std::string ext) {
    chattransfer::listTreeFiles(dir, {ext, dbKey}, files, report);
    return 1;
}

int dbTrans::getsubdirs(std::string dir, std::vector<std::string>& dirs) {
    chattransfer::listSubfolders(dir, dirs, report);
    return 1;
}

long long dbTrans::getTargetIDFromePath(std::string& path) {
    return chattransfer::conversationOfPath(path);
}

bool dbTrans::unixdel_dir(char* path) {
    return tools::del_dir(path) == 0;
}

int dbTrans::readMsgFromFileNJ() {
    if (dbOpen() == 0) return asInt(chattransfer::kDatabaseFailed);
    getTables();
    const std::vector<std::string> paths = openTree(*this);
    return asInt(chattransfer::inOneTransaction(*this, mainDb, "messages of the tree", [&] {
        chattransfer::TreeMessageOptions options;
        options.movesAttachments = true;
        options.reportsProgress = true;
        chattransfer::TreeMessageImport import(*this, mainDb, options);
        const chattransfer::ErrorCode result = import.take(paths);
        if (result != chattransfer::kSuccess) return result;
        chattransfer::trimMessageTables(mainDb, tableNames, report);
        wtRecontactToDb();
        return chattransfer::kSuccess;
    }));
}

int dbTrans::readMsgFromFileNJBack(bool removeDecrypted) {
    if (backdbOpen() == 0) return asInt(chattransfer::kDatabaseFailed);
    getTables2(backDb);
    const std::vector<std::string> paths = openTree(*this);
    std::vector<std::string> stored;
    const chattransfer::ErrorCode result = chattransfer::inOneTransaction(*this, backDb, "messages of the tree", [&] {
        chattransfer::TreeMessageImport import(*this, backDb, {});
        const chattransfer::ErrorCode taken = import.take(paths);
        stored = import.stored();
        return taken;
    });
    // A decrypted file is the only copy of its messages until the database has them for good.
    const bool durable = !backDb.transactionFailed();
    if (removeDecrypted && durable) {
        for (const std::string& path : stored)
            static_cast<void>(std::remove(path.c_str()));
    }
    return asInt(result);
}

int dbTrans::readContactFromFileNJ() {
    std::vector<std::string> paths;
    getfiles(chattransfer::treeRoot(*this), paths, chattransfer::kContactExtension);
    for (std::string& path : paths) {
        if (rdRecontactFromFile(path) == chattransfer::kMissing) report.skip(path, "is gone");
    }
    return asInt(chattransfer::kSuccess);
}

int dbTrans::wtSingleMsgToDbNJ(imsdk::st_dbMessageBean& record, imsdk::dbUtils& db, imsdk::dbCommand& command) {
    const bool stored = chattransfer::insertMessage(report, db, command, record) != 0;
    return asInt(stored ? chattransfer::kSuccess : chattransfer::kDatabaseFailed);
}

int dbTrans::importFile2(std::string body, int msgType) {
    chattransfer::TreeFileFolders folders(*this);
    return chattransfer::moveTreeFiles(report, folders, body, msgType, chattransfer::kMessageFileKeys);
}

int dbTrans::importFile3(std::string content, int type) {
    chattransfer::TreeFileFolders folders(*this);
    return chattransfer::moveTreeFiles(report, folders, content, type, chattransfer::kNoteFileKeys);
}

int dbTrans::readNoteFromFileNJ() {
    return asInt(
        chattransfer::readTreeRecords(*this, chattransfer::kNoteFiles, notes, [this](const st_noteTrans& note) {
            if (chattransfer::carriesTreeFiles(note.type)) importFile3(note.content, note.type);
        }));
}

int dbTrans::readRoomFromFileNJ() {
    if (!treeExists(*this)) return asInt(chattransfer::kMissing);
    return asInt(
        chattransfer::readTreeRecords(*this, chattransfer::kRoomFiles, rooms, [](const st_roomTrans& /*room*/) {}));
}

int dbTrans::wtNoteAndRoomToDbNJ() {
    if (kabDbOpen() == 0) return asInt(chattransfer::kDatabaseFailed);
    const bool tablesThere = makePluginTable(*this, chattransfer::kNoteTable, chattransfer::kCreateNoteTable) &&
                             makePluginTable(*this, chattransfer::kRoomTable, chattransfer::kCreateRoomTable);
    if (!tablesThere) return asInt(chattransfer::kDatabaseFailed);
    return asInt(chattransfer::inOneTransaction(*this, pluginDb, "notes and rooms", [this] {
        writeNotes(*this);
        writeRooms(*this);
        return chattransfer::kSuccess;
    }));
}

int dbTrans::wtAllToDBNJ() {
    return wtNoteAndRoomToDbNJ();
}

int dbTrans::rdAllFromFileNJ() {
    if (!treeExists(*this)) return asInt(chattransfer::kMissing);
    const auto announce = [this](int stage, int percent) { chattransfer::notify(*this, stage, percent, percent, 100); };
    announce(0, 0);
    readContactFromFileNJ();
    announce(1, 10);
    if (const int failure = readMsgFromFileNJ()) return failure;
    announce(2, 90);
    if (const int failure = readNoteFromFileNJ()) return failure;
    announce(3, 95);
    if (const int failure = readRoomFromFileNJ()) return failure;
    announce(3, 100);
    return asInt(chattransfer::kSuccess);
}
