#include "host/files/file_handle.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <new>
#include <utility>

namespace tools::detail {
namespace {

constexpr mode_t kOwnerOnly = 0600;

ssize_t readSome(int descriptor, char* bytes, std::size_t size) {
    ssize_t count = -1;
    do {
        count = read(descriptor, bytes, size);
    } while (count < 0 && errno == EINTR);
    return count;
}

bool copyThroughBuffer(int from, int to) {
    std::array<char, 1 << 16> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    for (;;) {
        const ssize_t count = readSome(from, buffer.data(), buffer.size());
        if (count <= 0) return count == 0;
        if (!writeAll(to, buffer.data(), static_cast<std::size_t>(count))) return false;
    }
}

#ifdef __linux__
// 1: all copied, 0: not supported for these files and nothing copied yet, -1: failed half way.
int copyInKernel(int from, int to) {
    constexpr std::size_t kAtOnce = std::size_t{1} << 30;
    bool any = false;
    for (;;) {
        const ssize_t count = copy_file_range(from, nullptr, to, nullptr, kAtOnce, 0);
        // Some file systems answer 0 at once for files that do have bytes; the plain loop then finds them.
        if (count == 0) return any ? 1 : 0;
        if (count < 0) return any ? -1 : 0;
        any = true;
    }
}
#endif

// A sparse file can have more bytes than any text: the same to callers as memory that runs out.
void makeRoom(std::string& bytes, std::uintmax_t size) {
    if (size > bytes.max_size()) throw std::bad_alloc();
    bytes.resize(static_cast<std::size_t>(size));
}

// Names of one process differ by the counter, those of several by the process id; a leftover of a crash is passed over.
std::string temporaryNameFor(const std::string& name) {
    static std::atomic<unsigned> counter{0};
    const std::size_t slash = name.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : name.substr(0, slash + 1);
    return folder + ".new-" + std::to_string(getpid()) + "-" + std::to_string(counter++) + ".part";
}

}  // namespace

FileHandle::~FileHandle() {
    close();
}

FileHandle::FileHandle(FileHandle&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

FileHandle& FileHandle::operator=(FileHandle&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

bool FileHandle::close() {
    if (descriptor_ < 0) return true;
    return ::close(std::exchange(descriptor_, -1)) == 0;
}

FileHandle openRegularFile(int folder, const char* name, bool followLinks) {
    const int links = followLinks ? 0 : O_NOFOLLOW;
    FileHandle handle(openat(folder, name, O_RDONLY | O_CLOEXEC | O_NONBLOCK | links));
    struct stat status {};
    if (!handle.valid() || fstat(handle.get(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
    return handle;
}

bool copyBytes(int from, int to) {
#ifdef __linux__
    const int copied = copyInKernel(from, to);
    if (copied != 0) return copied > 0;
#endif
    return copyThroughBuffer(from, to);
}

bool writeAll(int descriptor, const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t count = write(descriptor, bytes, size);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        bytes += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

bool readAll(int descriptor, std::string& bytes) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return false;
    // One byte more than the file has: the read that finds the end then needs no further room.
    makeRoom(bytes, static_cast<std::uintmax_t>(status.st_size) + 1);
    std::size_t filled = 0;
    for (;;) {
        const ssize_t count = readSome(descriptor, bytes.data() + filled, bytes.size() - filled);
        if (count < 0) return false;
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
        if (filled == bytes.size()) makeRoom(bytes, std::uintmax_t{bytes.size()} * 2);
    }
    bytes.resize(filled);
    return true;
}

NewFile::NewFile(int folder, std::string name) : folder_(folder), name_(std::move(name)) {
    do {
        temporaryName_ = temporaryNameFor(name_);
        handle_ = FileHandle(
            openat(folder_, temporaryName_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kOwnerOnly));
    } while (!handle_.valid() && errno == EEXIST);
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
