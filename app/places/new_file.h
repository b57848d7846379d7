// Files that a sample is made of.
#pragma once

#include <string>

namespace app {

/// Writes a file that is not there yet, for its owner only. It is not flushed to the disk: a sample can be made again.
/// Throws Failure.
void writeNewFile(const std::string& path, const std::string& bytes);

}  // namespace app
