// Importing the message files of a tree into one database.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/dbUtils.h"
#include "transfer/attachments/tree_attachments.h"
#include "transfer/base/progress.h"
#include "transfer/error_codes.h"
#include "transfer/format/message_text.h"
#include "transfer/records.h"
#include "transfer/tables/table_index.h"
#include "transfer/transfer_report.h"

namespace chattransfer {

/// What sets the imports into the main and the back database apart, beside the database itself.
struct TreeMessageOptions {
    TreeFileFolders* attachments = nullptr;  ///< null leaves attachments where they are
    const Progress* progress = nullptr;      ///< null reports none
};

/// Whose messages are read, and what their files must have.
struct TreeOwner {
    long long id;                ///< of the user
    const std::string& version;  ///< of the format
};

/// One import of message files into `db`, within a transaction of the caller. `tableNames` lists the tables of `db`.
class TreeMessageImport {
public:
    TreeMessageImport(TransferReport& report, imsdk::dbUtils& db, std::vector<std::string>& tableNames,
                      const TreeOwner& owner, const TreeMessageOptions& options);

    /// Takes the files in order. kSuccess; kWrongVersion at the first file of another version; kDatabaseFailed as soon
    /// as the transaction is lost. Messages of earlier files are inserted in any case.
    [[nodiscard]] ErrorCode take(const std::vector<std::string>& paths);

    /// The files of which every message is in the database.
    [[nodiscard]] const std::vector<std::string>& stored() const { return stored_; }

private:
    [[nodiscard]] ErrorCode takeFile(const std::string& path);
    void openConversation(long long targetID);
    void takeMessages(MessageFileContent& file, const std::string& path);
    void takeMessage(imsdk::st_dbMessageBean& message);
    void countFile();

    TransferReport& report_;
    imsdk::dbUtils& db_;
    TableIndex tables_;
    const TreeOwner owner_;
    const TreeMessageOptions options_;
    imsdk::dbCommand insert_;
    std::optional<long long> conversation_;  // the one that insert_ is prepared for
    bool tableOpen_ = false;                 // and whether it has a table
    std::size_t listed_ = 0;
    std::size_t done_ = 0;
    std::vector<std::string> stored_;
};

}  // namespace chattransfer
