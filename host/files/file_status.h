// What stands at a path, told from one look that follows no link.
#pragma once

#include <string>

struct stat;

namespace tools {

/// What stands at a name.
enum class FileKind {
    none,  ///< nothing, or nothing that can be reached without following a link
    regular,
    folder,
    other,    ///< a symbolic link, a FIFO, a socket, a device
    unknown,  ///< nobody can look: an input/output error, a folder without permission
};

struct FileStatus {
    FileKind kind = FileKind::none;
    unsigned long long size = 0;  ///< bytes of a regular file
    int error = 0;                ///< the system's number for none and unknown
};

/// A symbolic link in the last component is `other`, wherever it leads.
[[nodiscard]] FileStatus statusOf(const std::string& path);

/// 0 when this process may read the file `path`, else the system's number for why not.
[[nodiscard]] int readingRefusal(const std::string& path);

/// Removes the file or empty folder `path`, of a symbolic link the link itself. False when that failed.
[[nodiscard]] bool removeFile(const std::string& path);

namespace detail {

/// Whether a call that gave `error` for a name has thereby said that nothing is there.
[[nodiscard]] bool meansAbsent(int error);

/// `result` and `status` are those of stat() or one of its kin, just called.
[[nodiscard]] FileStatus statusFrom(int result, const struct stat& status);

}  // namespace detail
}  // namespace tools
