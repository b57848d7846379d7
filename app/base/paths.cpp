#include "app/base/paths.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "host/tools.h"

namespace app {

bool isFolder(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

std::string foldersIn(const std::filesystem::path& folder) {
    constexpr std::size_t kMost = 10;
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        if (isFolder(entry->path())) names.push_back(entry->path().filename().string());
    }
    std::sort(names.begin(), names.end());
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
    std::error_code error;
    for (std::filesystem::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code unknown;
        const bool regular = entry->is_regular_file(unknown) && !entry->is_symlink(unknown);
        const auto size = regular ? entry->file_size(unknown) : 0;
        if (!unknown) bytes += size;
    }
    return bytes;
}

}  // namespace app
