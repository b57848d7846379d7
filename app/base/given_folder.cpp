#include "app/base/given_folder.h"

#include <filesystem>

namespace app {

std::string GivenFolder::nameOf(const std::string& name) const {
    namespace fs = std::filesystem;
    const bool isPath = name.compare(0, 1, "/") == 0 || name.compare(0, 2, "./") == 0;
    if (!isPath || given.empty()) return name;
    const fs::path below = (fs::path(working) / name).lexically_normal().lexically_relative(resolved);
    if (below.empty() || *below.begin() == "..") return name;
    return below == "." ? given : (fs::path(given) / below).string();
}

}  // namespace app
