// Tree import: decrypts the files of a per-conversation tree and imports its messages, recent contacts, notes and
// rooms.
#include <cstdio>

#include "host/tools.h"
#include "transfer/conversation_writer.h"
#include "transfer/dbTrans.h"
#include "transfer/message_trimming.h"
#include "transfer/one_transaction.h"
#include "transfer/plugin_tables.h"
#include "transfer/progress_report.h"
#include "transfer/tree_attachments.h"
#include "transfer/tree_format.h"
#include "transfer/tree_messages.h"
#include "transfer/tree_records.h"
#include "transfer/tree_walk.h"

using transfer::asInt;

namespace {

bool treeExists(const dbTrans& transfer) {
    return tools::fileExist(transfer::treeRoot(transfer).c_str());
}

// Points the transfer object to the user's tree and lists its message files.
std::vector<std::string> openTree(dbTrans& transfer) {
    transfer.msgFileDir = transfer::treeRoot(transfer);
    transfer.imFileDir = transfer.msgFileDir + transfer::kTreeAttachmentsFolder;
    std::vector<std::string> paths;
    transfer.getfiles(transfer.msgFileDir, paths, transfer::kMessageExtension);
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
    imsdk::dbCommand insert(&transfer.pluginDb, transfer::kInsertNote);
    for (st_noteTrans& note : transfer.notes) {
        if (transfer.isNoteExsit(note) != 0) {
            ++transfer.report.notesDuplicate;
            continue;
        }
        transfer::bindNote(insert, note);
        countInsert(transfer, insert, transfer.report.notesInserted, "a note");
    }
}

void writeRooms(dbTrans& transfer) {
    imsdk::dbCommand insert(&transfer.pluginDb, transfer::kInsertRoom);
    for (st_roomTrans& room : transfer.rooms) {
        if (transfer.isRoomExsit(room.roomName, room.roomMember) != 0) {
            ++transfer.report.roomsDuplicate;
            continue;
        }
        transfer::bindRoom(insert, room);
        countInsert(transfer, insert, transfer.report.roomsInserted, "a room");
    }
}

}  // namespace

int dbTrans::getfiles(std::string dir, std::vector<std::string>& files, std::string ext) {
    transfer::listTreeFiles(dir, {ext, dbKey}, files, report);
    return 1;
}

int dbTrans::getsubdirs(std::string dir, std::vector<std::string>& dirs) {
    transfer::listSubfolders(dir, dirs, report);
    return 1;
}

long long dbTrans::getTargetIDFromePath(std::string& path) {
    return transfer::conversationOfPath(path);
}

bool dbTrans::unixdel_dir(char* path) {
    return tools::del_dir(path) == 0;
}

int dbTrans::readMsgFromFileNJ() {
    if (dbOpen() == 0) return asInt(transfer::kDatabaseFailed);
    getTables();
    const std::vector<std::string> paths = openTree(*this);
    return asInt(transfer::inOneTransaction(*this, mainDb, "messages of the tree", [&] {
        transfer::TreeMessageOptions options;
        options.movesAttachments = true;
        options.reportsProgress = true;
        transfer::TreeMessageImport import(*this, mainDb, options);
        const transfer::ErrorCode result = import.take(paths);
        if (result != transfer::kSuccess) return result;
        transfer::trimMessageTables(mainDb, tableNames, report);
        wtRecontactToDb();
        return transfer::kSuccess;
    }));
}

int dbTrans::readMsgFromFileNJBack(bool removeDecrypted) {
    if (backdbOpen() == 0) return asInt(transfer::kDatabaseFailed);
    getTables2(backDb);
    const std::vector<std::string> paths = openTree(*this);
    std::vector<std::string> stored;
    const transfer::ErrorCode result = transfer::inOneTransaction(*this, backDb, "messages of the tree", [&] {
        transfer::TreeMessageImport import(*this, backDb, {});
        const transfer::ErrorCode taken = import.take(paths);
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
    getfiles(transfer::treeRoot(*this), paths, transfer::kContactExtension);
    for (std::string& path : paths) {
        if (rdRecontactFromFile(path) == transfer::kMissing) report.skip(path, "is gone");
    }
    return asInt(transfer::kSuccess);
}

int dbTrans::wtSingleMsgToDbNJ(imsdk::st_dbMessageBean& record, imsdk::dbUtils& db, imsdk::dbCommand& command) {
    const bool stored = transfer::insertMessage(report, db, command, record) != 0;
    return asInt(stored ? transfer::kSuccess : transfer::kDatabaseFailed);
}

int dbTrans::importFile2(std::string body, int msgType) {
    transfer::TreeFileFolders folders(*this);
    return transfer::moveTreeFiles(report, folders, body, msgType, transfer::kMessageFileKeys);
}

int dbTrans::importFile3(std::string content, int type) {
    transfer::TreeFileFolders folders(*this);
    return transfer::moveTreeFiles(report, folders, content, type, transfer::kNoteFileKeys);
}

int dbTrans::readNoteFromFileNJ() {
    return asInt(transfer::readTreeRecords(*this, transfer::kNoteFiles, notes, [this](const st_noteTrans& note) {
        if (transfer::carriesTreeFiles(note.type)) importFile3(note.content, note.type);
    }));
}

int dbTrans::readRoomFromFileNJ() {
    if (!treeExists(*this)) return asInt(transfer::kMissing);
    return asInt(transfer::readTreeRecords(*this, transfer::kRoomFiles, rooms, [](const st_roomTrans& /*room*/) {}));
}

int dbTrans::wtNoteAndRoomToDbNJ() {
    if (kabDbOpen() == 0) return asInt(transfer::kDatabaseFailed);
    const bool tablesThere = makePluginTable(*this, transfer::kNoteTable, transfer::kCreateNoteTable) &&
                             makePluginTable(*this, transfer::kRoomTable, transfer::kCreateRoomTable);
    if (!tablesThere) return asInt(transfer::kDatabaseFailed);
    return asInt(transfer::inOneTransaction(*this, pluginDb, "notes and rooms", [this] {
        writeNotes(*this);
        writeRooms(*this);
        return transfer::kSuccess;
    }));
}

int dbTrans::wtAllToDBNJ() {
    return wtNoteAndRoomToDbNJ();
}

int dbTrans::rdAllFromFileNJ() {
    if (!treeExists(*this)) return asInt(transfer::kMissing);
    const auto announce = [this](int stage, int percent) { transfer::notify(*this, stage, percent, percent, 100); };
    announce(0, 0);
    readContactFromFileNJ();
    announce(1, 10);
    if (const int failure = readMsgFromFileNJ()) return failure;
    announce(2, 90);
    if (const int failure = readNoteFromFileNJ()) return failure;
    announce(3, 95);
    if (const int failure = readRoomFromFileNJ()) return failure;
    announce(3, 100);
    return asInt(transfer::kSuccess);
}
