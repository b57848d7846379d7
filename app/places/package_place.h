// Finds a package from what a person gives as its folder.
#pragma once

#include <string>

#include "app/base/given_folder.h"

namespace app {

/// Where the files of one user's package lie.
struct PackagePlace {
    std::string parent;       ///< absolute; the folder that holds qelmsg_0
    std::string messages;     ///< the user's message folder, ending in "/"
    std::string attachments;  ///< the user's attachment folder, ending in "/"
    GivenFolder given;        ///< what the person named; operations work in `parent`

    [[nodiscard]] std::string root() const;  ///< qelmsg_0 itself, without a "/" at its end
};

/// `folder` is the folder that holds qelmsg_0, or qelmsg_0 itself. Throws a Failure that lists the users of the package
/// when this one has no folder in it.
[[nodiscard]] PackagePlace findPackage(const std::string& folder, const std::string& user);

}  // namespace app
