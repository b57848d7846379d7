// When the bytes of a new file have to be on the disk.
#pragma once

#include <string>

namespace tools {

enum class Flush {
    now,    ///< before the file gets its name: after a power failure the name stands for whole bytes or is not there
    later,  ///< with flushFileSystem(), once for many files: for output that only counts when all of it is there
};

/// Brings the names in `folder` onto the disk. False when that failed.
[[nodiscard]] bool flushFolder(const std::string& folder);

/// Brings everything written so far to the file system that holds `folder` onto the disk. False when that failed.
[[nodiscard]] bool flushFileSystem(const std::string& folder);

}  // namespace tools
