// The history of a package or a tree, as the pages take it.
#pragma once

#include <string>

#include "app/places/package_place.h"
#include "app/tree/tree_contents.h"
#include "app/view/history.h"
#include "host/files/confined_files.h"
#include "transfer/transfer_report.h"

namespace app {

struct ViewSource {
    std::string root;  ///< of the package or tree; absolute
    view::History history;
    tools::ConfinedFolder attachments;
    TransferReport leftOut;  ///< message files and contacts that are not shown, with the reason
    long long notShown = 0;  ///< notes and rooms, which have no page
};

/// Reads a package. Throws Failure when there is something, and nothing of it can be read.
[[nodiscard]] ViewSource readPackageForView(const PackagePlace& place, const std::string& user);

/// Reads a tree. Throws Failure when it has encrypted files and `key` is empty, or when nothing of it can be read.
[[nodiscard]] ViewSource readTreeForView(const TreeSource& tree, const std::string& key);

}  // namespace app
