#include "host/files/flush.h"

#include <fcntl.h>
#include <unistd.h>

#include "host/files/file_handle.h"

namespace tools {

bool flushFileSystem(const std::string& folder) {
    const detail::FileHandle handle(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!handle.valid()) return false;
#ifdef __linux__
    return syncfs(handle.get()) == 0;
#else
    sync();
    return true;
#endif
}

}  // namespace tools
