// Tree import: the messages, whose files are decrypted on the way.
#include <cstdio>

#include "host/tools.h"
#include "transfer/operations/parts_of.h"
#include "transfer/tables/conversation_writer.h"
#include "transfer/tables/message_trimming.h"
#include "transfer/tables/one_transaction.h"
#include "transfer/tree/tree_messages.h"
#include "transfer/tree/tree_walk.h"

using chattransfer::asInt;

namespace {

constexpr const char* kAllMessages = "messages of the tree";

// Points the transfer object to the user's tree and lists its message files.
std::vector<std::string> openTree(dbTrans& transfer) {
    const chattransfer::UserTree tree = chattransfer::treeOf(transfer);
    transfer.msgFileDir = tree.root;
    transfer.imFileDir = tree.root + chattransfer::kTreeAttachmentsFolder;
    std::vector<std::string> paths;
    chattransfer::listTreeFiles(tree.root, {chattransfer::kMessageExtension, tree.key}, paths, transfer.report);
    return paths;
}

chattransfer::TreeOwner ownerOf(const dbTrans& transfer) {
    return {tools::atoint64(transfer.packageSubDir.c_str()), transfer.packageVersion};
}

}  // namespace

int dbTrans::readMsgFromFileNJ() {
    if (dbOpen() == 0) return asInt(chattransfer::kDatabaseFailed);
    getTables();
    const std::vector<std::string> paths = openTree(*this);
    const chattransfer::Progress progress = chattransfer::progressOf(*this);
    chattransfer::TreeFileFolders folders = chattransfer::treeFileFoldersOf(*this);
    return asInt(chattransfer::inOneTransaction(report, mainDb, kAllMessages, [&] {
        chattransfer::TreeMessageImport import(report, mainDb, tableNames, ownerOf(*this), {&folders, &progress});
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
    const chattransfer::ErrorCode result = chattransfer::inOneTransaction(report, backDb, kAllMessages, [&] {
        chattransfer::TreeMessageImport import(report, backDb, tableNames, ownerOf(*this), {});
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

int dbTrans::wtSingleMsgToDbNJ(imsdk::st_dbMessageBean& record, imsdk::dbUtils& db, imsdk::dbCommand& command) {
    const bool stored = chattransfer::insertMessage(report, db, command, record) != 0;
    return asInt(stored ? chattransfer::kSuccess : chattransfer::kDatabaseFailed);
}
