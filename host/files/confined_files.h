// Files named by foreign text, kept inside one folder.
//
// Attachment names come from message bodies and packages, that is from strangers. A name is resolved beneath a folder
// that the user chose, component by component, and no symbolic link is followed on the way: what would lead outside is
// simply not there. The folder itself may be reached through links; that is the user's own choice.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "host/files/file_handle.h"
#include "host/files/file_status.h"
#include "host/files/flush.h"
#include "host/rehearsal.h"

namespace tools {

namespace detail {
struct ConfinedPlace;
enum class MissingFolders { stay, create };
}  // namespace detail

/// True when `name`, appended to a folder, cannot name anything outside it: it is not empty, has no ".." component, no
/// NUL, and no component longer than 255 bytes. A leading "/" or a text such as "http://host/a" is fine: names are
/// appended, not resolved, and empty components count for nothing.
[[nodiscard]] bool isConfinedName(const std::string& name);

/// What became of a confined copy or move.
enum class FileOutcome {
    done,     ///< the target holds the file
    missing,  ///< there is no such source
    refused,  ///< a name leads outside its folder or over a symbolic link, or the source is no regular file
    failed,   ///< the source could not be read, or the target not be written
};

/// A folder and the names beneath it. The folder and the one of its subfolders that was used last stay open as long as
/// the object lives, so that thousands of attachments do not walk the same way again: an object belongs to one loop.
class ConfinedFolder {
public:
    /// The folder is `below`, beneath `path`: `path` may be reached through links, `below` may not. Names are appended
    /// as they are, without a separator.
    explicit ConfinedFolder(std::string path, std::string below = "")
        : path_(std::move(path)), below_(std::move(below)) {}

    [[nodiscard]] const std::string& path() const { return path_; }

    /// From now on nothing is copied, moved or created: `rehearsal`, which is not owned, notes what would be, and what
    /// it has noted counts as done. Null changes nothing.
    void rehearse(Rehearsal* rehearsal) { rehearsal_ = rehearsal; }

    /// True when `name` is certainly a regular file that can be reached without following a symbolic link beneath the
    /// folder.
    [[nodiscard]] bool hasFile(const std::string& name);

    /// True when `name` is a directory that can be reached without following a symbolic link beneath the folder.
    [[nodiscard]] bool hasFolder(const std::string& name);

    /// True when anything at all stands or may stand at `name`, a symbolic link included, or when the name is not
    /// confined: in all these cases nothing may be put there.
    [[nodiscard]] bool isTaken(const std::string& name);

    [[nodiscard]] FileKind kindOf(const std::string& name);

    /// Reads all of the regular file `name`; false when it is missing, no regular file, or cannot be read.
    [[nodiscard]] bool read(const std::string& name, std::string& bytes);

    /// Creates the folder `name` with its missing parents, the folder itself included; 0 when it is there afterwards,
    /// -1 when the name is not confined, crosses a symbolic link or cannot be created.
    int createFolder(const std::string& name);

    /// Copies the regular file `source` to `target` in the folder `to`, replacing an existing file, by the rules of
    /// copyFile(). Folders of `target` that are missing are not created.
    [[nodiscard]] FileOutcome copyTo(ConfinedFolder& to, const std::string& source, const std::string& target,
                                     Flush flush = Flush::now);

    /// Moves it instead, by the rules of moveFile().
    [[nodiscard]] FileOutcome moveTo(ConfinedFolder& to, const std::string& source, const std::string& target);

private:
    detail::ConfinedPlace find(const std::string& name);
    bool open(detail::MissingFolders missing);
    int enter(std::string_view parents, detail::MissingFolders missing);
    int rehearseFolder(const std::string& name);
    [[nodiscard]] std::string fullPath(std::string_view name) const;
    [[nodiscard]] bool hasAppeared(std::string_view name) const;
    [[nodiscard]] bool hasVanished(std::string_view name) const;
    template <class Transfer>
    FileOutcome transferTo(ConfinedFolder& to, const std::string& source, const std::string& target, Transfer transfer);

    std::string path_;
    std::string below_;
    detail::FileHandle itself_;
    detail::FileHandle inner_;  // the subfolder used last
    std::string innerName_;
    Rehearsal* rehearsal_ = nullptr;
};

// --- The same for a single name beneath `folder` ---

[[nodiscard]] bool confinedFileExists(const std::string& folder, const std::string& name);
[[nodiscard]] bool confinedFolderExists(const std::string& folder, const std::string& name);
[[nodiscard]] bool confinedNameTaken(const std::string& folder, const std::string& name);
[[nodiscard]] FileOutcome copyConfined(const std::string& fromFolder, const std::string& from,
                                       const std::string& toFolder, const std::string& to, Flush flush = Flush::now);
[[nodiscard]] int createConfinedDir(const std::string& folder, const std::string& name);

}  // namespace tools
