#include "app/base/paths.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "host/files/folder_walk.h"
#include "host/tools.h"

namespace app {

bool isFolder(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

std::string foldersIn(const std::filesystem::path& folder) {
    constexpr std::size_t kMost = 10;
    std::vector<std::string> names = tools::namesIn(folder.string(), tools::NameOrder::byBytes).names;
    const auto isNoFolder = [&](const std::string& name) { return !isFolder(folder / name); };
    names.erase(std::remove_if(names.begin(), names.end(), isNoFolder), names.end());
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), kMost); ++i)
        text += (i > 0 ? ", " : "") + names[i];
    return names.size() > kMost ? text + ", ..." : text;
}

std::string lastComponent(const std::string& path) {
    std::string name;
    tools::getNameFromPath(path, name);
    return name;
}

unsigned long long sizeOfFolder(const std::string& folder) {
    unsigned long long bytes = 0;
    tools::FolderWalk walk(folder);
    static_cast<void>(walk.enter());
    while (walk.next()) {
        bytes += walk.status().size;
        if (walk.status().kind == tools::FileKind::folder) static_cast<void>(walk.enter());
    }
    return bytes;
}

}  // namespace app
