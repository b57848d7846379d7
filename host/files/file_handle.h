// Inside of the file utilities: an owned file descriptor and the few system calls on it that need a loop or care.
#pragma once

#include <sys/types.h>

#include <string>

namespace tools::detail {

/// Owns a descriptor; negative means none.
class FileHandle {
public:
    FileHandle() = default;
    explicit FileHandle(int descriptor) : descriptor_(descriptor) {}
    ~FileHandle();
    FileHandle(FileHandle&& other) noexcept;
    FileHandle& operator=(FileHandle&& other) noexcept;
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    [[nodiscard]] bool valid() const { return descriptor_ >= 0; }
    [[nodiscard]] int get() const { return descriptor_; }

    /// Closes now and says whether that succeeded: a write error may show only here.
    bool close();

private:
    int descriptor_ = -1;
};

/// Opens `name` beneath the directory `folder` (AT_FDCWD for the current one) for reading, if it is a regular file.
/// Never blocks on FIFOs and devices. `followLinks` says whether `name` itself may be a symbolic link. An invalid
/// handle has the reason in errno.
[[nodiscard]] FileHandle openRegularFile(int folder, const char* name, bool followLinks);

/// Whether openRegularFile() left `error` because something else than a regular file stands there.
[[nodiscard]] bool meansNotRegular(int error);

/// Opens the directory `name` beneath `folder` (AT_FDCWD for the current one): to flush or lock it, or to reach what is
/// in it. An invalid handle has the reason in errno.
[[nodiscard]] FileHandle openFolder(int folder, const char* name, bool followLinks = true);

/// Copies all bytes from one descriptor to the other, in the kernel where it can.
[[nodiscard]] bool copyBytes(int from, int to);

/// Writes all of `bytes`.
[[nodiscard]] bool writeAll(int descriptor, const void* bytes, std::size_t size);

/// Reads the next `size` bytes, fewer only at the end of the file: how many, or -1 on a read error.
[[nodiscard]] ssize_t readBlock(int descriptor, void* bytes, std::size_t size);

/// Reads the rest of the file into `bytes`; false on a read error. Throws std::bad_alloc when it has more bytes than
/// fit the memory.
[[nodiscard]] bool readAll(int descriptor, std::string& bytes);

}  // namespace tools::detail
