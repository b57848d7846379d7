#include "host/cipher/cipher_container.h"

#include <openssl/rand.h>

#include <algorithm>
#include <string>

#include "host/cipher/cipher_error.h"

namespace cipher {
namespace {

// The line ends and the control character show a transfer that rewrites text files.
constexpr std::array<unsigned char, 8> kMagic = {'C', 'T', 'A', 'E', 'S', '\r', '\n', 0x1A};
constexpr std::uint32_t kCurrentVersion = 1;
constexpr unsigned char kPbkdf2Sha512ThenHkdfSha256 = 1;
constexpr unsigned char kAes256GcmStream = 1;

constexpr std::size_t kVersionOffset = 8;
constexpr std::size_t kDerivationOffset = 10;
constexpr std::size_t kCipherOffset = 11;
constexpr std::size_t kIterationsOffset = 12;
constexpr std::size_t kChunkSizeOffset = 16;
constexpr std::size_t kTreeSaltOffset = 20;
constexpr std::size_t kFileSaltOffset = 36;
static_assert(kFileSaltOffset + std::tuple_size<FileSalt>::value == kHeaderSize);

template <std::size_t N>
void putNumber(std::array<unsigned char, N>& bytes, std::size_t offset, std::size_t width, std::uint32_t value) {
    for (std::size_t i = 0; i < width; ++i) {
        bytes[offset + width - 1 - i] = static_cast<unsigned char>(value >> (8 * i));
    }
}

std::uint32_t getNumber(const HeaderBytes& bytes, std::size_t offset, std::size_t width) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < width; ++i) {
        value = (value << 8) | bytes[offset + i];
    }
    return value;
}

void checkMagic(const HeaderBytes& bytes, std::size_t present) {
    if (present < kMagic.size() || !std::equal(kMagic.begin(), kMagic.end(), bytes.begin())) {
        throw Failure("not an encrypted file");
    }
}

void checkVersion(const HeaderBytes& bytes, std::size_t present) {
    if (present < kDerivationOffset) {
        throw Failure("damaged header: cut");
    }
    const std::uint32_t version = getNumber(bytes, kVersionOffset, 2);
    if (version > kCurrentVersion) {
        throw Failure("written by a newer version of the format (" + std::to_string(version) + ")");
    }
    if (version < kCurrentVersion) {
        throw Failure("damaged header: no such version");
    }
}

void checkParameters(const HeaderBytes& bytes) {
    if (bytes[kDerivationOffset] != kPbkdf2Sha512ThenHkdfSha256 || bytes[kCipherOffset] != kAes256GcmStream) {
        throw Failure("damaged header: unknown method");
    }
    const std::uint32_t iterations = getNumber(bytes, kIterationsOffset, 4);
    if (iterations < kMinIterations || iterations > kMaxIterations) {
        throw Failure("damaged header: iteration count out of bounds");
    }
    if (getNumber(bytes, kChunkSizeOffset, 4) != kChunkSize) {
        throw Failure("damaged header: chunk size out of bounds");
    }
}

template <typename Salt>
Salt randomSalt() {
    Salt salt{};
    if (RAND_bytes(salt.data(), static_cast<int>(salt.size())) != 1) {
        throw Failure("no random numbers");
    }
    return salt;
}

}  // namespace

HeaderBytes encodeHeader(const Header& header) {
    HeaderBytes bytes{};
    std::copy(kMagic.begin(), kMagic.end(), bytes.begin());
    putNumber(bytes, kVersionOffset, 2, kCurrentVersion);
    bytes[kDerivationOffset] = kPbkdf2Sha512ThenHkdfSha256;
    bytes[kCipherOffset] = kAes256GcmStream;
    putNumber(bytes, kIterationsOffset, 4, header.iterations);
    putNumber(bytes, kChunkSizeOffset, 4, kChunkSize);
    std::copy(header.treeSalt.begin(), header.treeSalt.end(), bytes.begin() + kTreeSaltOffset);
    std::copy(header.fileSalt.begin(), header.fileSalt.end(), bytes.begin() + kFileSaltOffset);
    return bytes;
}

Header decodeHeader(const HeaderBytes& bytes, std::size_t present) {
    checkMagic(bytes, present);
    checkVersion(bytes, present);
    if (present < kHeaderSize) {
        throw Failure("damaged header: cut");
    }
    checkParameters(bytes);
    Header header{};
    header.iterations = getNumber(bytes, kIterationsOffset, 4);
    std::copy_n(bytes.begin() + kTreeSaltOffset, header.treeSalt.size(), header.treeSalt.begin());
    std::copy_n(bytes.begin() + kFileSaltOffset, header.fileSalt.size(), header.fileSalt.begin());
    return header;
}

Nonce chunkNonce(std::uint64_t number, bool last) {
    if (number >= kMaxChunks) {
        throw Failure("file too large for this format");
    }
    Nonce nonce{};
    putNumber(nonce, 7, 4, static_cast<std::uint32_t>(number));
    nonce[11] = last ? 1 : 0;
    return nonce;
}

TreeSalt randomTreeSalt() {
    return randomSalt<TreeSalt>();
}

FileSalt randomFileSalt() {
    return randomSalt<FileSalt>();
}

}  // namespace cipher
