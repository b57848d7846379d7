#pragma once

#include <openssl/evp.h>

#include <cstddef>
#include <cstdint>
#include <memory>

#include "host/cipher/cipher_container.h"
#include "host/cipher/cipher_key.h"

namespace cipher {

/// A buffer for one chunk, sealed or plain. The memory is not initialised: only what a file fills is ever touched.
class Chunk {
public:
    Chunk() : bytes_(new unsigned char[kSealedChunkSize]) {}

    /// Room for kSealedChunkSize bytes; the pointer is valid as long as the object.
    [[nodiscard]] unsigned char* data() { return bytes_.get(); }

    /// How many of them are filled.
    [[nodiscard]] std::size_t size() const { return size_; }
    void setSize(std::size_t size) { size_ = size; }

private:
    std::unique_ptr<unsigned char[]> bytes_;
    std::size_t size_ = 0;
};

/// AES-256-GCM (NIST SP 800-38D) over the chunks of one file, with the header as associated data of every chunk. An
/// object goes in one direction.
class ChunkCipher {
public:
    enum class Direction { seal, open };

    /// Throws Failure when the crypto library does.
    ChunkCipher(Direction direction, const FileKey& key, const HeaderBytes& header);

    /// Encrypts a plain chunk (0 to kChunkSize bytes) in place and appends its tag. Throws Failure "file too large ..."
    /// or when the crypto library does.
    void seal(std::uint64_t number, bool last, Chunk& chunk);

    /// Decrypts a sealed chunk (up to kSealedChunkSize bytes) in place and drops its tag. False when it is not chunk
    /// `number` of the file with this header and key, or not in that last or non-last place: its contents are then
    /// worthless. Throws Failure "file too large ..." or when the crypto library does.
    [[nodiscard]] bool open(std::uint64_t number, bool last, Chunk& chunk);

private:
    struct ContextDeleter {
        void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
    };

    void begin(std::uint64_t number, bool last);
    void convert(unsigned char* bytes, std::size_t size);

    std::unique_ptr<EVP_CIPHER_CTX, ContextDeleter> context_;
    HeaderBytes header_;
};

}  // namespace cipher
