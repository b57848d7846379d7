// Looking at eight bytes of a text at once. The steps are those of "determine if a word has a zero byte" and its kin
// (S. E. Anderson, Bit Twiddling Hacks).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tools {

/// The eight bytes at `text`, the first of them in the lowest lane on every machine.
inline std::uint64_t lanesAt(const char* text) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, text, sizeof(bytes));
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    bytes = __builtin_bswap64(bytes);
#endif
    return bytes;
}

/// A word of eight times `byte`.
constexpr std::uint64_t eachByte(unsigned char byte) {
    return 0x0101010101010101U * byte;
}

/// The tests below set the high bit of each byte that they look for. A byte behind such a one may be flagged as well, a
/// byte before the first never: firstFlagged() of a non-zero result is right.
inline std::size_t firstFlagged(std::uint64_t flags) {
    return static_cast<std::size_t>(__builtin_ctzll(flags)) / 8;
}

/// Non-zero when one of the eight bytes is zero.
constexpr std::uint64_t anyZero(std::uint64_t bytes) {
    return (bytes - eachByte(1)) & ~bytes & eachByte(0x80);
}

/// Non-zero when one of the eight bytes is below 0x20: a control character.
constexpr std::uint64_t anyControl(std::uint64_t bytes) {
    return (bytes - eachByte(0x20)) & ~bytes & eachByte(0x80);
}

}  // namespace tools
