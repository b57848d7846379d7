#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// The fixed parts of an encrypted file: sizes, limits, the header and the nonces. Numbers are big-endian.
/// docs/formats/cipher-container.md holds the same in prose, with test vectors.
namespace cipher {

constexpr std::size_t kChunkSize = 65536;  // plain bytes in every chunk but the last
constexpr std::size_t kTagSize = 16;       // the full AES-GCM tag (NIST SP 800-38D)
constexpr std::size_t kSealedChunkSize = kChunkSize + kTagSize;
constexpr std::size_t kHeaderSize = 68;

/// PBKDF2 iterations a writer uses: what OWASP's password storage cheat sheet asks for with HMAC-SHA-512.
constexpr std::uint32_t kWritingIterations = 210000;
/// What a reader accepts. Fewer was never written; more would let a hostile file buy minutes of computing.
constexpr std::uint32_t kMinIterations = 100000;
constexpr std::uint32_t kMaxIterations = 1000000;

/// The most chunks of one file: 256 TiB of text. Keeps the counter within its 32 bits.
constexpr std::uint64_t kMaxChunks = std::uint64_t{1} << 32;

using TreeSalt = std::array<unsigned char, 16>;  // shared by the files encrypted in one run under one key text
using FileSalt = std::array<unsigned char, 32>;  // of one file
using HeaderBytes = std::array<unsigned char, kHeaderSize>;
using Nonce = std::array<unsigned char, 12>;

struct Header {
    std::uint32_t iterations;
    TreeSalt treeSalt;
    FileSalt fileSalt;
};

/// The 68 bytes that open a file with these parameters.
[[nodiscard]] HeaderBytes encodeHeader(const Header& header);

/// Reads a header of which the first `present` bytes (0 to 68) could be read from the file; the rest is ignored.
/// Throws Failure: "not an encrypted file" (other or missing kMagic), "written by a newer version ...", "damaged header
/// ..." (cut, an unknown method, an iteration count outside kMinIterations..maxIterations, another chunk size). The
/// salts are not checked here: a changed salt gives another key, under which no chunk verifies.
[[nodiscard]] Header decodeHeader(const HeaderBytes& bytes, std::size_t present);

/// The AES-GCM nonce of chunk `number` (from 0): seven zero bytes, the number in four, 1 for the last chunk and else 0.
/// It follows the STREAM construction of Hoang, Reyhanitabar, Rogaway and Vizár ("Online Authenticated-Encryption and
/// its Nonce-Reuse Misuse-Resistance", 2015). No two chunks of a file share a nonce, and no two files share a key.
/// Throws Failure "file too large ..." from chunk kMaxChunks on.
[[nodiscard]] Nonce chunkNonce(std::uint64_t number, bool last);

/// A fresh salt from the system's random generator. Throws Failure when it has no random numbers to give.
[[nodiscard]] TreeSalt randomTreeSalt();
[[nodiscard]] FileSalt randomFileSalt();

}  // namespace cipher
