#include "app/places/new_file.h"

#include <fcntl.h>

#include <cerrno>

#include "app/base/failure.h"
#include "host/files/file_handle.h"

namespace app {

void writeNewFile(const std::string& path, const std::string& bytes) {
    constexpr mode_t kOwnerOnly = 0600;
    tools::detail::FileHandle file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerOnly));
    const bool written =
        file.valid() && tools::detail::writeAll(file.get(), bytes.data(), bytes.size()) && file.close();
    if (!written) throw Failure({0, "A file of the sample cannot be written", path, systemWords(errno), ""});
}

}  // namespace app
