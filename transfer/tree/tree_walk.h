// Finding the files of a tree: the walk that decrypts on its way, and the conversation that a path stands for.
#pragma once

#include <string>
#include <vector>

#include "transfer/transfer_report.h"

namespace chattransfer {

/// What a walk looks for.
struct TreeSearch {
    const std::string& extension;  ///< three bytes, as ".mg"; any other length finds nothing
    const std::string& key;        ///< key text of the encrypted files
};

/// Appends the decrypted files below `folder` to `paths`: those that stand there already, and those that it decrypts
/// from encrypted ones, which are removed then. Depth first, in the order in which the system lists each folder.
/// Symbolic links are never followed, FIFOs and devices never opened for longer than a look. What cannot be decrypted
/// stays and is named in the report.
///
/// A path is listed twice when a folder holds the encrypted file and its decrypted copy.
void listTreeFiles(const std::string& folder, const TreeSearch& search, std::vector<std::string>& paths,
                   TransferReport& report);

/// Appends the directories directly in `folder`, links to directories left out. A folder that cannot be read to its end
/// is named in the report.
void listSubfolders(const std::string& folder, std::vector<std::string>& paths, TransferReport& report);

inline constexpr long long kNoConversation = -1;

/// The number that the last run of decimal digits before the path's last "/" spells (its last "\" when it has no "/").
/// kNoConversation when there is no separator, no digit before it, or when the run begins the path. A number beyond 64
/// bits gives their largest value.
[[nodiscard]] long long conversationOfPath(const std::string& path);

}  // namespace chattransfer
