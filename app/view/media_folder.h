// Attachments beside the pages. They get names of our own making: what a stranger called a file decides neither where
// it lies nor what a browser takes it for.
#pragma once

#include <map>
#include <string>

#include "app/view/history.h"
#include "host/files/confined_files.h"

namespace app::view {

struct MediaCounts {
    long long copied = 0;
    long long missing = 0;
    long long refused = 0;
    long long failed = 0;  ///< could not be read or written
};

class MediaFolder {
public:
    /// `source` holds the attachments; `target` is the folder for the copies, which exists and ends in "/".
    MediaFolder(tools::ConfinedFolder source, std::string target)
        : source_(std::move(source)), target_(std::move(target)) {}

    /// The name of the file's copy, such as "12.png"; empty when there is none. Each file is copied once.
    [[nodiscard]] std::string copyOf(const NamedFile& file);

    /// Of all files that were asked for.
    [[nodiscard]] const MediaCounts& counts() const { return counts_; }

private:
    [[nodiscard]] std::string copy(const NamedFile& file);

    tools::ConfinedFolder source_;
    tools::ConfinedFolder target_;
    std::map<std::string, std::string> names_;  // by source
    MediaCounts counts_;
};

/// The ending that the copy of a file gets: the file's own where it is on the list of those that a browser never takes
/// for a page, else ".bin".
[[nodiscard]] std::string safeEnding(const NamedFile& file);

}  // namespace app::view
