// Importing the message files of a tree into one database.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "transfer/attachments/tree_attachments.h"
#include "transfer/dbTrans.h"
#include "transfer/format/message_text.h"
#include "transfer/tables/table_index.h"

namespace chattransfer {

/// What sets the imports into the main and the back database apart, beside the database itself.
struct TreeMessageOptions {
    bool movesAttachments = false;
    bool reportsProgress = false;
};

/// One import of message files, within a transaction of the caller. The tables of `db` must stand in tableNames.
class TreeMessageImport {
public:
    TreeMessageImport(dbTrans& transfer, imsdk::dbUtils& db, TreeMessageOptions options);

    /// Takes the files in order. kSuccess; kWrongVersion at the first file of another version; kDatabaseFailed as soon
    /// as the transaction is lost. Messages of earlier files are inserted in any case.
    ErrorCode take(const std::vector<std::string>& paths);

    /// The files of which every message is in the database.
    const std::vector<std::string>& stored() const { return stored_; }

private:
    ErrorCode takeFile(const std::string& path);
    void openConversation(long long targetID);
    void takeMessages(MessageFileContent& file, const std::string& path);
    void takeMessage(imsdk::st_dbMessageBean& message);
    void countFile();

    dbTrans& transfer_;
    imsdk::dbUtils& db_;
    const TreeMessageOptions options_;
    const long long ownID_;
    TableIndex index_;
    imsdk::dbCommand insert_;
    std::optional<long long> conversation_;  // the one that insert_ is prepared for
    bool tableOpen_ = false;                 // and whether it has a table
    TreeFileFolders folders_;
    std::size_t listed_ = 0;
    std::size_t done_ = 0;
    std::vector<std::string> stored_;
};

}  // namespace chattransfer
