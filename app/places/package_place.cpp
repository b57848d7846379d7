#include "app/places/package_place.h"

#include <filesystem>

#include "app/base/failure.h"
#include "app/base/paths.h"
#include "transfer/error_codes.h"
#include "transfer/format/package_format.h"

namespace app {
namespace {

namespace fs = std::filesystem;

// The folder that holds qelmsg_0: `folder`, or its parent where `folder` is qelmsg_0 itself.
fs::path parentOfPackage(const std::string& folder) {
    const fs::path path = resolvedPath(folder);
    const bool isPackage =
        path.filename() == chattransfer::kPackageName && isFolder(path / chattransfer::kMessagesFolder);
    return isPackage ? path.parent_path() : path;
}

}  // namespace

std::string PackagePlace::root() const {
    return parent + "/" + chattransfer::kPackageName;
}

PackagePlace findPackage(const std::string& folder, const std::string& user) {
    const fs::path parent = parentOfPackage(folder);
    const fs::path root = parent / chattransfer::kPackageName;
    if (!isFolder(root)) {
        throw Failure({chattransfer::kMissing, "There is no package", root.string(),
                       isFolder(parent) ? "the folder is missing" : "even the folder that should hold it is missing",
                       "give the folder that holds qelmsg_0, as an export made it; a tree, in qelbackup, is for "
                       "import-tree, inspect and verify"});
    }
    PackagePlace place{parent.string(),
                       (root / chattransfer::kMessagesFolder / user / "").string(),
                       (root / chattransfer::kAttachmentsFolder / user / "").string(),
                       {folder, resolvedPath(folder).string(), parent.string()}};
    for (const std::string& part : {place.messages, place.attachments}) {
        if (isFolder(part)) continue;
        const std::string users = foldersIn(root / chattransfer::kMessagesFolder);
        throw Failure({chattransfer::kMissing, "The package holds nothing of user " + user, part,
                       "the folder is missing", users.empty() ? "" : "check --user; this package holds: " + users});
    }
    return place;
}

}  // namespace app
