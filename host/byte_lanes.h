// Looking at eight bytes of a text at once. The steps are those of "determine if a word has a zero byte" and its kin
// (S. E. Anderson, Bit Twiddling Hacks).
#pragma once

#include <cstdint>

namespace tools {

/// A word of eight times `byte`.
constexpr std::uint64_t eachByte(unsigned char byte) {
    return 0x0101010101010101U * byte;
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
