// Where a tree is built before it gets its name.
#pragma once

#include <string>

#include "host/file_handle.h"

namespace app {

/// A hidden folder beside the final one. It is renamed only when the tree is whole and on the disk; a crash leaves the
/// hidden folder at most, and the next command with a target in the same place removes it.
class TreeStaging {
public:
    /// `target` is absolute. Makes the folder that is to hold it where that is missing. Throws Failure when the target
    /// exists, cannot be made, or when another command is building in the same place.
    explicit TreeStaging(std::string target);
    ~TreeStaging();
    TreeStaging(const TreeStaging&) = delete;
    TreeStaging& operator=(const TreeStaging&) = delete;
    TreeStaging(TreeStaging&&) = delete;
    TreeStaging& operator=(TreeStaging&&) = delete;

    /// The hidden folder, ending in "/".
    const std::string& folder() const { return folder_; }
    const std::string& target() const { return target_; }

    /// Brings everything to the disk and gives the tree its final name. Throws Failure.
    void publish();

private:
    void refuseExistingTarget() const;

    std::string target_;
    std::string parent_;
    std::string folder_;
    tools::detail::FileHandle lock_;
};

/// Throws Failure when `target` lies in `from`: the source must stay as it is.
void refuseTargetInside(const std::string& from, const std::string& target);

}  // namespace app
