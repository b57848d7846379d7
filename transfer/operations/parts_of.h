// What the rooms below take of a transfer object.
#pragma once

#include "transfer/attachments/attachment_folders.h"
#include "transfer/attachments/tree_attachments.h"
#include "transfer/base/progress.h"
#include "transfer/dbTrans.h"
#include "transfer/format/tree_format.h"
#include "transfer/package/attachment_paths.h"
#include "transfer/tree/tree_records.h"

namespace chattransfer {

[[nodiscard]] inline Progress progressOf(const dbTrans& transfer) {
    return {transfer.progressListener, transfer.progressContext};
}

[[nodiscard]] inline AttachmentSource attachmentSourceOf(const dbTrans& transfer) {
    return {transfer.backupPath, transfer.imFileDir, transfer.rehearsalSource, transfer.rehearsal};
}

[[nodiscard]] inline AttachmentFolders attachmentFoldersOf(const dbTrans& transfer) {
    return {attachmentSourceOf(transfer), transfer.rootPath};
}

[[nodiscard]] inline AttachmentPaths attachmentPathsOf(dbTrans& transfer) {
    return {transfer.audioPaths, transfer.filePaths, transfer.imagePaths};
}

[[nodiscard]] inline TreeFileFolders treeFileFoldersOf(const dbTrans& transfer) {
    return {attachmentSourceOf(transfer),
            {transfer.userAudioDir, transfer.userFileDir, transfer.userImageDir, transfer.userVideoDir}};
}

[[nodiscard]] inline UserTree treeOf(const dbTrans& transfer) {
    return {treeRoot(transfer.backupPath, transfer.packageSubDir), transfer.dbKey, transfer.packageVersion};
}

}  // namespace chattransfer
