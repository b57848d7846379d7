// Where a folder is built before it gets its name.
#pragma once

#include <string>

#include "app/base/failure.h"
#include "host/files/file_handle.h"

namespace app {

/// What may stand at the final name before.
enum class TargetBefore {
    nothing,
    emptyFolder,  ///< or nothing
};

/// Who brings the files that are built to the disk.
enum class FilesFlushed {
    byStaging,
    byWriter,  ///< one by one: only their folders are left to do
};

/// What is being built.
struct StagedThing {
    std::string name;        ///< in messages: "tree"
    std::string hiddenName;  ///< of the folder that it is built in; no two things share one
    std::string built;       ///< what gets the final name: that folder itself when empty, else a path in it, with "/"
    TargetBefore before;
    FilesFlushed files;
    FailureWords whenTaken;  ///< said where there is something at the final name; the path is filled in
    FailureWords whenBusy;   ///< said while another command is building in the same place; likewise
};

/// The tree that encrypt-tree and decrypt-tree make.
[[nodiscard]] StagedThing stagedTree();

/// A hidden folder beside the final one, which gets its name only when everything is whole and on the disk. It goes
/// when this object does; a crash leaves it at most, and the next one of its name in the same place removes it.
class FolderStaging {
public:
    /// `target` is absolute. Makes the folder that is to hold it where that is missing. Throws Failure when there is
    /// something at the target already, when it cannot be made, or when another command is building in the same place.
    FolderStaging(std::string target, StagedThing thing);
    ~FolderStaging();
    FolderStaging(const FolderStaging&) = delete;
    FolderStaging& operator=(const FolderStaging&) = delete;
    FolderStaging(FolderStaging&&) = delete;
    FolderStaging& operator=(FolderStaging&&) = delete;

    /// The hidden folder, ending in "/".
    [[nodiscard]] std::string folder() const { return hidden_ + "/"; }
    /// The folder that is to hold the target.
    [[nodiscard]] const std::string& place() const { return place_; }
    [[nodiscard]] const std::string& target() const { return target_; }

    /// Makes the hidden folder the working directory: paths below it stay short, however long the target's path is.
    void enter() const;

    /// Brings everything to the disk and gives the folder its final name. Throws Failure.
    void publish();

private:
    void lockPlace();
    void makeFolder() const;

    StagedThing thing_;
    std::string target_;
    std::string place_;
    std::string hidden_;
    tools::detail::FileHandle lock_;
};

/// Throws Failure when `target` lies in `from`: the source must stay as it is.
void refuseTargetInside(const std::string& from, const std::string& target);

}  // namespace app
