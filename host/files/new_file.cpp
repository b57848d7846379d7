#include "host/files/new_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "host/files/temporary_name.h"

namespace tools::detail {

NewFile::NewFile(int folder, std::string name) : folder_(folder), name_(std::move(name)) {
    constexpr mode_t kOwnerOnly = 0600;
    const std::string beside = name_.substr(0, name_.rfind('/') + 1);
    do {
        temporaryName_ = beside + nextTemporaryName();
        handle_ = FileHandle(
            openat(folder_, temporaryName_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kOwnerOnly));
    } while (!handle_.valid() && errno == EEXIST);
    if (!handle_.valid()) temporaryName_.clear();
}

NewFile::~NewFile() {
    if (!temporaryName_.empty()) unlinkat(folder_, temporaryName_.c_str(), 0);
}

bool NewFile::commit(Flush flush) {
    if (!handle_.valid() || (flush == Flush::now && fsync(handle_.get()) != 0) || !handle_.close()) return false;
    if (renameat(folder_, temporaryName_.c_str(), folder_, name_.c_str()) != 0) return false;
    temporaryName_.clear();
    return true;
}

}  // namespace tools::detail
