// The files of a tree on their way through an import.
#pragma once

#include <string>
#include <vector>

#include "app/base/given_folder.h"
#include "transfer/dbTrans.h"

namespace app {

/// The decrypted copies that an import reads, and what it cannot read.
struct TreeImportFiles {
    std::vector<std::string> messages;
    std::vector<std::string> contacts;
    std::vector<std::string> notes;
    std::vector<std::string> rooms;
    long long notDecrypted = 0;  ///< files that cannot be decrypted, and folders that cannot be searched
    TransferReport report;       ///< names them

    [[nodiscard]] std::vector<std::string> all() const;
    [[nodiscard]] long long conversations(dbTrans& transfer) const;
};

enum class TreeKinds { messages, all };

/// Decrypts the files of the transfer's tree, ahead of the import, which then finds them decrypted: with a key that
/// does not fit, nothing has to be made. Throws Failure, with paths as `given` names them, when files
/// are there and none of them can be read.
[[nodiscard]] TreeImportFiles decryptFiles(dbTrans& transfer, TreeKinds kinds, const GivenFolder& given);

/// Throws Failure when the first message file has another version than the transfer expects: better before anything is
/// made than half way through an import.
void requireTreeVersion(const TreeImportFiles& files, const dbTrans& transfer, const GivenFolder& given);

/// How many of the named files could be decrypted, but not read or understood. More may be when the report has
/// overflowed.
[[nodiscard]] long long countNotParsed(const TransferReport& report);

/// Removes the decrypted copies of which everything has arrived, after a whole import into the main database: they are
/// the only copies, so a doubt keeps them.
void removeImported(const dbTrans& transfer, const TreeImportFiles& files);

/// Removes what an interrupted decryption left in the tree: texts in the clear that never got their name.
void removeLeftovers(const std::string& root);

}  // namespace app
