#include "app/attachments/compare_bytes.h"

#include <fcntl.h>

#include <array>
#include <cstring>

#include "host/files/file_handle.h"

namespace app {

Bytes compareBytes(const std::string& one, const std::string& other) {
    const tools::detail::FileHandle first = tools::detail::openRegularFile(AT_FDCWD, one.c_str(), false);
    const tools::detail::FileHandle second = tools::detail::openRegularFile(AT_FDCWD, other.c_str(), false);
    if (!first.valid() || !second.valid()) return Bytes::unreadable;
    std::array<char, 1 << 16> a;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    std::array<char, 1 << 16> b;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    for (;;) {
        const ssize_t sizeA = tools::detail::readBlock(first.get(), a.data(), a.size());
        const ssize_t sizeB = tools::detail::readBlock(second.get(), b.data(), b.size());
        if (sizeA < 0 || sizeB < 0) return Bytes::unreadable;
        if (sizeA != sizeB || std::memcmp(a.data(), b.data(), static_cast<std::size_t>(sizeA)) != 0)
            return Bytes::different;
        if (sizeA == 0) return Bytes::equal;
    }
}

}  // namespace app
