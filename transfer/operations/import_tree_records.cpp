// Tree import: recent contacts, notes and rooms, and the attachments that messages and notes name.
#include "host/tools.h"
#include "transfer/operations/parts_of.h"
#include "transfer/package/contact_file.h"
#include "transfer/tables/one_transaction.h"
#include "transfer/tables/plugin_writer.h"
#include "transfer/tree/tree_records.h"
#include "transfer/tree/tree_walk.h"

using chattransfer::asInt;

int dbTrans::readContactFromFileNJ() {
    const chattransfer::UserTree tree = chattransfer::treeOf(*this);
    std::vector<std::string> paths;
    chattransfer::listTreeFiles(tree.root, {chattransfer::kContactExtension, tree.key}, paths, report);
    for (const std::string& path : paths) {
        const chattransfer::ErrorCode read = chattransfer::readContactFile(path, tree.version, reContacts, report);
        if (read == chattransfer::kMissing) report.skip(path, chattransfer::Omission::contactFileMissing);
    }
    return asInt(chattransfer::kSuccess);
}

int dbTrans::importFile2(std::string body, int msgType) {
    chattransfer::TreeFileFolders folders = chattransfer::treeFileFoldersOf(*this);
    return chattransfer::moveTreeFiles(report, folders, body, msgType, chattransfer::kMessageFileKeys);
}

int dbTrans::importFile3(std::string content, int type) {
    chattransfer::TreeFileFolders folders = chattransfer::treeFileFoldersOf(*this);
    return chattransfer::moveTreeFiles(report, folders, content, type, chattransfer::kNoteFileKeys);
}

int dbTrans::readNoteFromFileNJ() {
    chattransfer::TreeFileFolders folders = chattransfer::treeFileFoldersOf(*this);
    const auto moveFiles = [&](const st_noteTrans& note) {
        // A note is one with or without files; what became of them is in the report.
        static_cast<void>(
            chattransfer::moveTreeFiles(report, folders, note.content, note.type, chattransfer::kNoteFileKeys));
    };
    return asInt(
        chattransfer::readTreeRecords(chattransfer::treeOf(*this), chattransfer::kNoteFiles, report, notes, moveFiles));
}

int dbTrans::readRoomFromFileNJ() {
    const chattransfer::UserTree tree = chattransfer::treeOf(*this);
    if (!tools::fileExist(tree.root.c_str())) return asInt(chattransfer::kMissing);
    return asInt(chattransfer::readTreeRecords(tree, chattransfer::kRoomFiles, report, rooms,
                                               [](const st_roomTrans& /*room*/) {}));
}

int dbTrans::wtNoteAndRoomToDbNJ() {
    if (kabDbOpen() == 0) return asInt(chattransfer::kDatabaseFailed);
    const chattransfer::ErrorCode made = chattransfer::makePluginTables(pluginDb, report);
    if (made != chattransfer::kSuccess) return asInt(made);
    return asInt(chattransfer::inOneTransaction(report, pluginDb, "notes and rooms", [this] {
        chattransfer::writeNotes(pluginDb, notes, report);
        chattransfer::writeRooms(pluginDb, rooms, report);
        return chattransfer::kSuccess;
    }));
}
