// Reading the message files of a package, whose attachments go back into the account on the way.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "transfer/attachments/attachment_folders.h"
#include "transfer/base/progress.h"
#include "transfer/error_codes.h"
#include "transfer/format/message_text.h"
#include "transfer/records.h"
#include "transfer/transfer_report.h"

namespace chattransfer {

/// True when the user's folders of messages and attachments are there, and are folders: a package whose folder is a
/// symbolic link would make the import read files from wherever the link leads.
[[nodiscard]] bool packageHasUser(const std::string& backup, const std::string& user);

/// How many message files stand in `folder`, which ends in "/", before the first number that does not.
[[nodiscard]] int countMessageFiles(const std::string& folder);

/// One reading of a package.
class PackageReader {
public:
    /// What is read, and where attachments come from and go to.
    struct Source {
        AttachmentSource attachments;  ///< of the package
        const std::string& messages;   ///< its message folder, ending in "/"
        const std::string& version;    ///< what its files must have
        const std::string& account;    ///< gets the attachments
    };

    PackageReader(const Source& source, std::map<long long, std::vector<imsdk::st_dbMessageBean>>& conversations,
                  TransferReport& report)
        : source_(source),
          folders_(source.attachments, source.account),
          conversations_(conversations),
          report_(report) {}

    /// Appends the messages of all files to their conversations. kSuccess, or kWrongVersion at the first file of
    /// another version; what was read before stays. Other files that cannot be read are left out and reported.
    [[nodiscard]] ErrorCode readAll(Progress& progress, int fileCount);

private:
    enum class FileResult { read, leftOut, wrongVersion };

    [[nodiscard]] FileResult readFile(const std::string& path);
    [[nodiscard]] FileResult leaveOut(const std::string& path, Omission kind);
    void takeDay(MessageDay& day);
    [[nodiscard]] std::vector<imsdk::st_dbMessageBean>& messagesOf(long long targetID);

    Source source_;
    AttachmentFolders folders_;
    std::map<long long, std::vector<imsdk::st_dbMessageBean>>& conversations_;
    TransferReport& report_;
    std::string text_;  // of one file after the other
    long long lastID_ = 0;
    std::vector<imsdk::st_dbMessageBean>* last_ = nullptr;
};

}  // namespace chattransfer
