// Package import, first step: reads a package into memory and restores its attachments.
#include "host/tools.h"
#include "transfer/attachments/attachment_restore.h"
#include "transfer/format/package_format.h"
#include "transfer/operations/parts_of.h"
#include "transfer/package/contact_file.h"
#include "transfer/package/package_reader.h"

unsigned int dbTrans::rdMsgFromFile() {
    const std::string root = chattransfer::packageRoot(backupPath);
    if (!tools::fileExist(root.c_str())) return chattransfer::kMissing;
    msgFileDir = root + chattransfer::kMessagesFolder + packageSubDir + "/";
    imFileDir = root + chattransfer::kAttachmentsFolder + packageSubDir + "/";
    if (!chattransfer::packageHasUser(backupPath, packageSubDir)) return chattransfer::kMissing;
    dataClear();
    chattransfer::Progress progress = chattransfer::progressOf(*this);
    const int fileCount = chattransfer::countMessageFiles(msgFileDir);
    const std::string contactFile = msgFileDir + chattransfer::kRecentContactFileName;
    // A package without recent contacts has messages all the same; why they are missing is in the report.
    static_cast<void>(chattransfer::readContactFile(contactFile, packageVersion, reContacts, report));
    chattransfer::PackageReader reader({chattransfer::attachmentSourceOf(*this), msgFileDir, packageVersion, rootPath},
                                       msgMap, report);
    return reader.readAll(progress, fileCount);
}

int dbTrans::getMsgFileNum(std::string dir) {
    return chattransfer::countMessageFiles(dir);
}

int dbTrans::importFile(std::string body, int msgType) {
    chattransfer::AttachmentFolders folders = chattransfer::attachmentFoldersOf(*this);
    return chattransfer::restoreAttachments(report, folders, body, msgType);
}
