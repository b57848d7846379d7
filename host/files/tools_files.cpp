#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "host/files/file_handle.h"
#include "host/files/file_status.h"
#include "host/files/new_file.h"
#include "host/tools.h"

namespace tools {
namespace {

constexpr mode_t kOwnerOnly = 0700;

bool isDirectory(const char* path) {
    struct stat status {};
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

bool fileExist(const char* path) {
    struct stat status {};
    return path != nullptr && stat(path, &status) == 0;
}

int isFileExsit(const std::string& path) {
    return fileExist(path.c_str()) ? 1 : 0;
}

Presence presenceOf(const std::string& path) {
    if (fileExist(path.c_str())) return Presence::present;
    return detail::meansAbsent(errno) ? Presence::absent : Presence::unknown;
}

int createDir(const char* path) {
    if (path == nullptr || *path == '\0') return -1;
    const std::string whole = path;
    // The usual cases first: it is there, or only its last component is missing.
    if (mkdir(path, kOwnerOnly) == 0 || isDirectory(path)) return 0;
    for (std::size_t slash = whole.find('/', 1); slash != std::string::npos; slash = whole.find('/', slash + 1)) {
        mkdir(whole.substr(0, slash).c_str(), kOwnerOnly);
    }
    mkdir(path, kOwnerOnly);
    return isDirectory(path) ? 0 : -1;
}

int del_dir(const char* path) {
    std::string name = path != nullptr ? path : "";
    name.erase(name.find_last_not_of('/') + 1);  // "link/" would name the directory that the link leads to
    if (statusOf(name).kind != FileKind::folder) return -1;
    std::error_code error;
    std::filesystem::remove_all(name, error);
    return error ? -1 : 0;
}

int copyFile(const char* from, const char* to) {
    if (from == nullptr || to == nullptr) return -1;
    const detail::FileHandle source = detail::openRegularFile(AT_FDCWD, from, true);
    if (!source.valid()) return -1;
    detail::NewFile target(AT_FDCWD, to);
    return target.valid() && detail::copyBytes(source.get(), target.get()) && target.commit() ? 0 : -1;
}

int moveFile(const char* from, const char* to) {
    if (from == nullptr || to == nullptr || statusOf(from).kind != FileKind::regular) return -1;
    if (std::rename(from, to) == 0) return 0;
    if (errno != EXDEV) return -1;
    return copyFile(from, to) == 0 && unlink(from) == 0 ? 0 : -1;
}

}  // namespace tools
