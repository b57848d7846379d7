#include "host/files/flush.h"

#include <fcntl.h>
#include <unistd.h>

#include "host/files/file_handle.h"

namespace tools {

bool flushFolder(const std::string& folder) {
    const detail::FileHandle handle = detail::openFolder(AT_FDCWD, folder.c_str());
    return handle.valid() && fsync(handle.get()) == 0;
}

bool flushFileSystem(const std::string& folder) {
    const detail::FileHandle handle = detail::openFolder(AT_FDCWD, folder.c_str());
    if (!handle.valid()) return false;
#ifdef __linux__
    return syncfs(handle.get()) == 0;
#else
    sync();
    return true;
#endif
}

}  // namespace tools
