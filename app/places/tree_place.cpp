#include "app/places/tree_place.h"

#include <filesystem>

#include "app/base/failure.h"
#include "app/base/paths.h"
#include "transfer/error_codes.h"
#include "transfer/format/tree_format.h"

namespace app {
namespace {

namespace fs = std::filesystem;

// The folder that holds qelbackup: `folder`, or its parent where `folder` is qelbackup itself.
fs::path parentOfTrees(const fs::path& folder) {
    const fs::path name = fs::path(chattransfer::kTreeFolder).parent_path().filename();
    return folder.filename() == name && !isFolder(folder / name) ? folder.parent_path() : folder;
}

}  // namespace

std::string treeFolderIn(const std::string& folder, const std::string& user) {
    return resolvedPath(folder).string() + chattransfer::kTreeFolder + user;
}

TreePlace findTree(const std::string& folder, const std::string& user) {
    const fs::path resolved = resolvedPath(folder);
    const std::string parent = parentOfTrees(resolved).string();
    const std::string trees = parent + chattransfer::kTreeFolder;
    TreePlace place{parent, trees + user, {folder, resolved.string(), parent}};
    if (isFolder(place.root)) return place;
    if (!isFolder(trees)) {
        throw Failure({chattransfer::kMissing, "There is no tree", trees, "the folder is missing",
                       "give the folder that holds qelbackup; encrypt-tree makes one out of a plain tree"});
    }
    const std::string users = foldersIn(trees);
    throw Failure({chattransfer::kMissing, "There is no tree of user " + user, place.root, "the folder is missing",
                   users.empty() ? "" : "check --user; there are trees of: " + users});
}

}  // namespace app
