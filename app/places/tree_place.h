// Finds a tree from what a person gives as its folder.
#pragma once

#include <string>

#include "app/base/given_folder.h"

namespace app {

/// Where one user's tree lies.
struct TreePlace {
    std::string parent;  ///< absolute; the folder that holds qelbackup
    std::string root;    ///< absolute, without a "/" at its end: parent/qelbackup/<user>
    GivenFolder given;   ///< what the person named; operations work in `parent`
};

/// The folder that a tree of this user has below `folder`, whether it is there or not.
[[nodiscard]] std::string treeFolderIn(const std::string& folder, const std::string& user);

/// `folder` is the folder that holds qelbackup, or qelbackup itself. Throws a Failure that says what was looked for and
/// lists the users whose trees are there instead.
[[nodiscard]] TreePlace findTree(const std::string& folder, const std::string& user);

}  // namespace app
