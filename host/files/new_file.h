// A file that stands under its name only once it is whole.
#pragma once

#include <string>

#include "host/files/file_handle.h"
#include "host/files/flush.h"

namespace tools::detail {

/// Written beside its final name under a temporary one, readable by its owner only (mode 0600), then flushed and
/// renamed by commit(). Without a commit the temporary file is removed.
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

    /// Whether it could be made; else the reason is in errno.
    [[nodiscard]] bool valid() const { return handle_.valid(); }
    [[nodiscard]] int get() const { return handle_.get(); }

    /// True when the file stands whole under its final name, replacing what was there; else the reason is in errno, and
    /// what was there is untouched. Nothing may be written afterwards.
    [[nodiscard]] bool commit(Flush flush = Flush::now);

private:
    int folder_;
    std::string name_;
    std::string temporaryName_;
    FileHandle handle_;
};

}  // namespace tools::detail
