// Tree import as a whole.
#include "host/tools.h"
#include "transfer/operations/parts_of.h"

using chattransfer::asInt;

int dbTrans::wtAllToDBNJ() {
    return wtNoteAndRoomToDbNJ();
}

int dbTrans::rdAllFromFileNJ() {
    if (!tools::fileExist(chattransfer::treeOf(*this).root.c_str())) return asInt(chattransfer::kMissing);
    const chattransfer::Progress progress = chattransfer::progressOf(*this);
    progress.report(0, 0, 100);
    readContactFromFileNJ();
    progress.report(1, 10, 100);
    if (const int failure = readMsgFromFileNJ()) return failure;
    progress.report(2, 90, 100);
    if (const int failure = readNoteFromFileNJ()) return failure;
    progress.report(3, 95, 100);
    if (const int failure = readRoomFromFileNJ()) return failure;
    progress.report(3, 100, 100);
    return asInt(chattransfer::kSuccess);
}
