#include "host/cipher/cipher_chunk.h"

#include "host/cipher/cipher_error.h"

namespace cipher {
namespace {

struct CipherDeleter {
    void operator()(EVP_CIPHER* cipher) const { EVP_CIPHER_free(cipher); }
};

// Looked up once: with thousands of small files the look-up by name would cost more than the encryption.
const EVP_CIPHER* aes256Gcm() {
    static const std::unique_ptr<EVP_CIPHER, CipherDeleter> cipher(EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr));
    return cipher.get();
}

void require(int result) {
    if (result != 1) {
        throw Failure("the crypto library failed");
    }
}

}  // namespace

ChunkCipher::ChunkCipher(Direction direction, const FileKey& key, const HeaderBytes& header)
    : context_(EVP_CIPHER_CTX_new()), header_(header) {
    const int encrypting = direction == Direction::seal ? 1 : 0;
    require(context_ ? 1 : 0);
    require(EVP_CipherInit_ex2(context_.get(), aes256Gcm(), key.data(), nullptr, encrypting, nullptr));
}

void ChunkCipher::seal(std::uint64_t number, bool last, Chunk& chunk) {
    begin(number, last);
    convert(chunk.data(), chunk.size());
    unsigned char* const tag = chunk.data() + chunk.size();
    int length = 0;
    require(EVP_CipherFinal_ex(context_.get(), tag, &length));
    require(EVP_CIPHER_CTX_ctrl(context_.get(), EVP_CTRL_AEAD_GET_TAG, kTagSize, tag));
    chunk.setSize(chunk.size() + kTagSize);
}

bool ChunkCipher::open(std::uint64_t number, bool last, Chunk& chunk) {
    if (chunk.size() < kTagSize) {
        return false;
    }
    const std::size_t plainSize = chunk.size() - kTagSize;
    unsigned char* const tag = chunk.data() + plainSize;
    begin(number, last);
    require(EVP_CIPHER_CTX_ctrl(context_.get(), EVP_CTRL_AEAD_SET_TAG, kTagSize, tag));
    convert(chunk.data(), plainSize);
    chunk.setSize(plainSize);
    int length = 0;
    return EVP_CipherFinal_ex(context_.get(), tag, &length) == 1;
}

// Keeps the key and its direction, sets the nonce and feeds the associated data.
void ChunkCipher::begin(std::uint64_t number, bool last) {
    const Nonce nonce = chunkNonce(number, last);
    int length = 0;
    require(EVP_CipherInit_ex2(context_.get(), nullptr, nullptr, nonce.data(), -1, nullptr));
    require(EVP_CipherUpdate(context_.get(), nullptr, &length, header_.data(), static_cast<int>(header_.size())));
}

void ChunkCipher::convert(unsigned char* bytes, std::size_t size) {
    int length = 0;
    require(EVP_CipherUpdate(context_.get(), bytes, &length, bytes, static_cast<int>(size)));
}

}  // namespace cipher
