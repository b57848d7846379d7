// Files that appear whole or not at all.
#pragma once

#include <string>
#include <string_view>

namespace tools {

/// Writes `bytes` as the file `path`, replacing an existing one: beside it first, then flushed and renamed. Readable by
/// its owner only (mode 0600). False when that failed; then an existing file is untouched and no other is left behind.
bool writeWholeFile(const std::string& path, std::string_view bytes);

/// Reads all of the regular file `path`. False when it is missing, no regular file, a symbolic link, or cannot be read;
/// it never blocks on a FIFO.
bool readWholeFile(const std::string& path, std::string& bytes);

}  // namespace tools
