// What lies in a folder tree, found without changing anything.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace app {

enum class TreeEntryKind {
    folder,
    file,
    other,  ///< a link, FIFO, socket or device: nothing that is ever opened
};

struct TreeEntry {
    std::string name;  ///< path below the root, such as "2002/a.mg"
    TreeEntryKind kind;
};

/// A folder that could not be read, and why.
struct UnreadableFolder {
    std::string name;  ///< path below the root; empty for the root itself
    std::string reason;
};

struct TreeListing {
    std::vector<TreeEntry> entries;  ///< by name within each folder; a folder stands before what it holds
    std::vector<UnreadableFolder> unreadable;
};

/// Lists everything below `root`, which may itself be a link. Links below it are never followed, and folders nested
/// deeper than kDeepestFolder count as unreadable.
[[nodiscard]] TreeListing listTree(const std::string& root);

inline constexpr int kDeepestFolder = 200;

/// True for a name that ends in .mg, .ct, .nt or .rm.
[[nodiscard]] bool hasRecordEnding(std::string_view name);

/// True for a name that ends as decrypted copies do.
[[nodiscard]] bool hasDecryptedEnding(std::string_view name);

/// True for the name of an encrypted record file: one that ends in .mg, .ct, .nt or .rm and is no attachment.
[[nodiscard]] bool isRecordFile(const std::string& name);

/// True for the name of a record file's decrypted copy, such as "2002/a.mg.decrypt".
[[nodiscard]] bool isDecryptedCopy(const std::string& name);

/// "2002/a.mg" for "2002/a.mg.decrypt".
[[nodiscard]] std::string nameWithoutDecrypted(const std::string& name);

/// True when the file `path` begins like an encrypted one, whatever its name.
[[nodiscard]] bool isEncrypted(const std::string& path);

}  // namespace app
