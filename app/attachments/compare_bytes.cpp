#include "app/attachments/compare_bytes.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstring>

#include "host/files/file_handle.h"

namespace app {
namespace {

using tools::detail::FileHandle;

ssize_t readBlock(const FileHandle& file, std::array<char, 1 << 16>& block) {
    std::size_t filled = 0;
    while (filled < block.size()) {
        const ssize_t count = read(file.get(), block.data() + filled, block.size() - filled);
        if (count < 0) return -1;
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
    }
    return static_cast<ssize_t>(filled);
}

}  // namespace

Bytes compareBytes(const std::string& one, const std::string& other) {
    const FileHandle first = tools::detail::openRegularFile(AT_FDCWD, one.c_str(), false);
    const FileHandle second = tools::detail::openRegularFile(AT_FDCWD, other.c_str(), false);
    if (!first.valid() || !second.valid()) return Bytes::unreadable;
    std::array<char, 1 << 16> a;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    std::array<char, 1 << 16> b;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    for (;;) {
        const ssize_t sizeA = readBlock(first, a);
        const ssize_t sizeB = readBlock(second, b);
        if (sizeA < 0 || sizeB < 0) return Bytes::unreadable;
        if (sizeA != sizeB || std::memcmp(a.data(), b.data(), static_cast<std::size_t>(sizeA)) != 0)
            return Bytes::different;
        if (sizeA == 0) return Bytes::equal;
    }
}

}  // namespace app
