#include "host/files/whole_file.h"

#include <fcntl.h>

#include <new>

#include "host/files/file_handle.h"
#include "host/files/new_file.h"

namespace tools {

bool writeWholeFile(const std::string& path, std::string_view bytes, Flush flush) {
    detail::NewFile file(AT_FDCWD, path);
    return file.valid() && detail::writeAll(file.get(), bytes.data(), bytes.size()) && file.commit(flush);
}

bool readWholeFile(const std::string& path, std::string& bytes) {
    return detail::readWholeFile(AT_FDCWD, path.c_str(), bytes);
}

bool detail::readWholeFile(int folder, const char* name, std::string& bytes) try {
    const FileHandle file = openRegularFile(folder, name, false);
    return file.valid() && readAll(file.get(), bytes);
} catch (const std::bad_alloc&) {
    return false;  // larger than the memory
}

}  // namespace tools
