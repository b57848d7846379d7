#include "app/places/package_place.h"

#include <algorithm>
#include <filesystem>

#include "app/base/failure.h"
#include "app/base/paths.h"
#include "transfer/error_codes.h"
#include "transfer/format/package_format.h"

namespace app {
namespace {

namespace fs = std::filesystem;

bool isFolder(const fs::path& path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

std::vector<std::string> foldersIn(const fs::path& path) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
        if (isFolder(entry->path())) names.push_back(entry->path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string listed(const std::vector<std::string>& names) {
    constexpr std::size_t kMost = 10;
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), kMost); ++i)
        text += (i > 0 ? ", " : "") + names[i];
    return names.size() > kMost ? text + ", ..." : text;
}

// The folder that holds qelmsg_0: `folder`, or its parent where `folder` is qelmsg_0 itself.
fs::path parentOfPackage(const std::string& folder) {
    const fs::path path = resolvedPath(folder);
    const bool isPackage =
        path.filename() == chattransfer::kPackageName && isFolder(path / chattransfer::kMessagesFolder);
    return isPackage ? path.parent_path() : path;
}

}  // namespace

PackagePlace findPackage(const std::string& folder, const std::string& user) {
    const fs::path parent = parentOfPackage(folder);
    const fs::path root = parent / chattransfer::kPackageName;
    if (!isFolder(root)) {
        throw Failure({chattransfer::kMissing, "There is no package", root.string(),
                       isFolder(parent) ? "the folder is missing" : "even the folder that should hold it is missing",
                       "give the folder that holds qelmsg_0, as an export made it; a tree, in qelbackup, is for "
                       "import-tree, inspect and verify"});
    }
    PackagePlace place{parent.string(), (root / chattransfer::kMessagesFolder / user / "").string(),
                       (root / chattransfer::kAttachmentsFolder / user / "").string()};
    for (const std::string& part : {place.messages, place.attachments}) {
        if (isFolder(part)) continue;
        const std::vector<std::string> users = foldersIn(root / chattransfer::kMessagesFolder);
        throw Failure({chattransfer::kMissing, "The package holds nothing of user " + user, part,
                       "the folder is missing",
                       users.empty() ? "" : "check --user; this package holds: " + listed(users)});
    }
    return place;
}

}  // namespace app
