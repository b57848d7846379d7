// All pages of a history.
#pragma once

#include <functional>
#include <string>

#include "app/view/history.h"
#include "app/view/media_folder.h"

namespace app::view {

/// What was written.
struct ViewCounts {
    long long messages = 0;
    long long conversations = 0;
    long long files = 0;  ///< pages and parts of the search index
    MediaCounts media;
};

/// Is told after each conversation how many messages of how many are on pages.
using ViewProgress = std::function<void(long long done, long long all)>;

/// Writes the pages of `history` into `folder`, which exists, is empty and ends in "/"; its conversations are sorted on
/// the way. `attachments` holds the files that messages name. Throws Failure.
[[nodiscard]] ViewCounts writeView(History& history, tools::ConfinedFolder attachments, const std::string& folder,
                                   const ViewProgress& progress);

}  // namespace app::view
