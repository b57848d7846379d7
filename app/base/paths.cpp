#include "app/base/paths.h"

#include <system_error>

#include "host/tools.h"

namespace app {

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
