// Inside of the file utilities: an owned file descriptor and the few system calls on it that need a loop or care.
#pragma once

#include <sys/types.h>

#include <string>

#include "host/files/flush.h"

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

    bool valid() const { return descriptor_ >= 0; }
    int get() const { return descriptor_; }

    /// Closes now and says whether that succeeded: a write error may show only here.
    bool close();

private:
    int descriptor_ = -1;
};

/// Opens `name` beneath the directory `folder` (AT_FDCWD for the current one) for reading, if it is a regular file.
/// Never blocks on FIFOs and devices. `followLinks` says whether `name` itself may be a symbolic link.
FileHandle openRegularFile(int folder, const char* name, bool followLinks);

/// Copies all bytes from one descriptor to the other, in the kernel where it can.
bool copyBytes(int from, int to);

/// A new file beside its final name: written under a temporary name, flushed and renamed by commit(). Without a commit
/// the temporary file is removed.
class NewFile {
public:
    /// `folder` must stay open for the life of the object (AT_FDCWD for the current directory); `name` is the final
    /// name beneath it.
    NewFile(int folder, std::string name);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    NewFile(NewFile&&) = delete;
    NewFile& operator=(NewFile&&) = delete;

    bool valid() const { return handle_.valid(); }
    int get() const { return handle_.get(); }

    /// True when the file stands whole under its final name.
    bool commit(Flush flush = Flush::now);

private:
    int folder_;
    std::string name_;
    std::string temporaryName_;
    FileHandle handle_;
};

/// Writes all of `bytes`.
bool writeAll(int descriptor, const char* bytes, std::size_t size);

/// Reads the rest of the file into `bytes`; false on a read error. Throws std::bad_alloc when it has more bytes than
/// fit the memory.
bool readAll(int descriptor, std::string& bytes);

}  // namespace tools::detail
