// Where a folder of files is built before it gets its name.
#pragma once

#include <string>

#include "app/places/hidden_folder.h"

namespace app {

/// What may stand at the final name before.
enum class TargetBefore {
    nothing,
    emptyFolder,  ///< or nothing
};

/// What is being built.
struct StagedThing {
    const char* name;        ///< in messages: "tree"
    const char* hiddenName;  ///< of the folder that it is built in; no two things share one
    TargetBefore before;
};

inline constexpr StagedThing kStagedTree{"tree", ".chat-transfer-tree.part", TargetBefore::nothing};

/// A hidden folder beside the final one. It is renamed only when everything is whole and on the disk.
class FolderStaging {
public:
    /// `target` is absolute. Makes the folder that is to hold it where that is missing. Throws Failure when there is
    /// something at the target already, when it cannot be made, or when another command is building in the same place.
    FolderStaging(std::string target, const StagedThing& thing);

    /// The hidden folder, ending in "/".
    const std::string& folder() const { return folder_; }
    const std::string& target() const { return target_; }

    /// Brings everything to the disk and gives the folder its final name. Throws Failure.
    void publish();

private:
    StagedThing thing_;
    std::string target_;
    HiddenFolder hidden_;
    std::string folder_;
};

/// Throws Failure when `target` lies in `from`: the source must stay as it is.
void refuseTargetInside(const std::string& from, const std::string& target);

}  // namespace app
