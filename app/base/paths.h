// Paths, and what lies at them.
#pragma once

#include <filesystem>
#include <string>

namespace app {

/// The absolute path with links and ".." resolved as far as it exists, without a "/" at its end. Commands change their
/// working directory, and the name of a folder is looked at.
[[nodiscard]] inline std::filesystem::path resolvedPath(const std::string& given) {
    const std::filesystem::path path = std::filesystem::weakly_canonical(std::filesystem::absolute(given));
    return path.has_filename() || !path.has_relative_path() ? path : path.parent_path();
}

/// True for a folder, also behind a link.
[[nodiscard]] bool isFolder(const std::filesystem::path& path);

/// The folders directly in `folder`, by name, as "a, b, ..."; empty when there is none.
[[nodiscard]] std::string foldersIn(const std::filesystem::path& folder);

/// What stands behind the last "/" of the path: all of it when there is none, nothing when it ends in one.
[[nodiscard]] std::string lastComponent(const std::string& path);

/// The bytes of all regular files below `folder`; what cannot be read counts for nothing.
[[nodiscard]] unsigned long long sizeOfFolder(const std::string& folder);

}  // namespace app
