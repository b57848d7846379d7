#include "host/files/file_status.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace tools {
namespace {

FileKind kindFrom(mode_t mode) {
    if (S_ISREG(mode)) return FileKind::regular;
    return S_ISDIR(mode) ? FileKind::folder : FileKind::other;
}

}  // namespace

bool detail::meansAbsent(int error) {
    return error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG || error == ELOOP;
}

FileStatus detail::statusFrom(int result, const struct stat& status) {
    if (result != 0) return {meansAbsent(errno) ? FileKind::none : FileKind::unknown, 0, errno};
    const FileKind kind = kindFrom(status.st_mode);
    return {kind, kind == FileKind::regular ? static_cast<unsigned long long>(status.st_size) : 0, 0};
}

FileStatus statusOf(const std::string& path) {
    struct stat status {};
    return detail::statusFrom(lstat(path.c_str(), &status), status);
}

int readingRefusal(const std::string& path) {
    return access(path.c_str(), R_OK) == 0 ? 0 : errno;
}

bool removeFile(const std::string& path) {
    return std::remove(path.c_str()) == 0;
}

}  // namespace tools
