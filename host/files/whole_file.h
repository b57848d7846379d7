// Files that appear whole or not at all.
#pragma once

#include <string>
#include <string_view>

#include "host/files/flush.h"

namespace tools {

/// Writes `bytes` as the file `path`, replacing an existing one: beside it first, then flushed (when `flush` says so)
/// and renamed. Readable by its owner only (mode 0600). False when that failed; then an existing file is untouched and
/// no other is left behind.
[[nodiscard]] bool writeWholeFile(const std::string& path, std::string_view bytes, Flush flush = Flush::now);

/// Reads all of the regular file `path`. False when it is missing, no regular file, a symbolic link, cannot be read, or
/// is larger than the memory; it never blocks on a FIFO.
[[nodiscard]] bool readWholeFile(const std::string& path, std::string& bytes);

namespace detail {

/// The same for `name` beneath the open directory `folder`.
[[nodiscard]] bool readWholeFile(int folder, const char* name, std::string& bytes);

}  // namespace detail

}  // namespace tools
