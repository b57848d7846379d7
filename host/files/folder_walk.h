// What lies in a folder, and in all folders below it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/files/file_status.h"

namespace tools {

/// The names in a folder but "." and "..", read at once.
struct FolderNames {
    std::vector<std::string> names;
    int error = 0;  ///< the system's number where the listing ended early; `names` has what came before
};

enum class NameOrder {
    asListed,  ///< as the system lists them
    byBytes,
};

[[nodiscard]] FolderNames namesIn(const std::string& folder, NameOrder order = NameOrder::asListed);

/// Everything below a folder, depth first. Only the root itself may be a symbolic link: those below it are entries like
/// files, and never followed.
///
///     FolderWalk walk(root);
///     walk.enter();
///     while (walk.next())
///         if (walk.status().kind == FileKind::folder) walk.enter();
///
/// A folder's names are read at once when it is entered. So what the loop itself makes in it stays out of its sight,
/// and no folder stays open, however deep the walk is. The levels are a list, not calls: a stranger's tree must not
/// choose how much stack is used.
class FolderWalk {
public:
    explicit FolderWalk(std::string root, NameOrder order = NameOrder::asListed);

    /// Goes down into the folder that next() has just come to, or into the root before the first next(). 0, or the
    /// system's number for why not all of its names are known; those that are come all the same.
    [[nodiscard]] int enter();

    /// Comes to the next entry. False when there is none.
    [[nodiscard]] bool next();

    /// The entry's path below the root, such as "2002/a.mg"; empty for the root.
    [[nodiscard]] const std::string& name() const { return name_; }
    /// Its last component: "a.mg".
    [[nodiscard]] std::string_view fileName() const;
    /// The name with the root in front of it.
    [[nodiscard]] const std::string& path() const { return path_; }
    /// What it was when next() came to it.
    [[nodiscard]] const FileStatus& status() const { return status_; }

    /// How many folders have been entered and not been left yet.
    [[nodiscard]] std::size_t depth() const { return levels_.size(); }

private:
    // One folder on the way down, and how far the walk has come in it.
    struct Level {
        std::string prefix;  // the folder's path below the root, with a "/" behind it
        std::vector<std::string> names;
        std::size_t next = 0;
    };

    std::string root_;
    NameOrder order_;
    std::vector<Level> levels_;
    std::string name_;
    std::string path_;
    FileStatus status_;
};

}  // namespace tools
