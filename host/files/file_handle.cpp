#include "host/files/file_handle.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <new>
#include <utility>

namespace tools::detail {
namespace {

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

// No handle, with `error` in errno: closing `handle` may leave another one there.
FileHandle giveUp(FileHandle& handle, int error) {
    handle.close();
    errno = error;
    return {};
}

// A sparse file can have more bytes than any text: the same to callers as memory that runs out.
void makeRoom(std::string& bytes, std::uintmax_t size) {
    if (size > bytes.max_size()) throw std::bad_alloc();
    bytes.resize(static_cast<std::size_t>(size));
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
    FileHandle handle(openat(folder, name, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK | links));
    struct stat status {};
    if (!handle.valid() || fstat(handle.get(), &status) != 0) return giveUp(handle, errno);
    return S_ISREG(status.st_mode) ? std::move(handle) : giveUp(handle, ENXIO);
}

// A symbolic link gives ELOOP; ENXIO is what the system gives for a socket, and openRegularFile() for the rest.
bool meansNotRegular(int error) {
    return error == ELOOP || error == ENXIO;
}

FileHandle openFolder(int folder, const char* name, bool followLinks) {
    const int links = followLinks ? 0 : O_NOFOLLOW;
    return FileHandle(openat(folder, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | links));
}

bool copyBytes(int from, int to) {
#ifdef __linux__
    const int copied = copyInKernel(from, to);
    if (copied != 0) return copied > 0;
#endif
    return copyThroughBuffer(from, to);
}

bool writeAll(int descriptor, const void* bytes, std::size_t size) {
    const char* rest = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t count = write(descriptor, rest, size);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        rest += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

ssize_t readBlock(int descriptor, void* bytes, std::size_t size) {
    std::size_t filled = 0;
    while (filled < size) {
        const ssize_t count = readSome(descriptor, static_cast<char*>(bytes) + filled, size - filled);
        if (count < 0) return -1;
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
    }
    return static_cast<ssize_t>(filled);
}

bool readAll(int descriptor, std::string& bytes) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return false;
    // One byte more than the file has: the read that finds the end then needs no further room.
    makeRoom(bytes, static_cast<std::uintmax_t>(status.st_size) + 1);
    std::size_t filled = 0;
    for (;;) {
        const ssize_t count = readBlock(descriptor, bytes.data() + filled, bytes.size() - filled);
        if (count < 0) return false;
        filled += static_cast<std::size_t>(count);
        if (filled < bytes.size()) break;
        makeRoom(bytes, std::uintmax_t{bytes.size()} * 2);
    }
    bytes.resize(filled);
    return true;
}

}  // namespace tools::detail
