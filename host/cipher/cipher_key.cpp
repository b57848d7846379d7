#include "host/cipher/cipher_key.h"

#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/kdf.h>
#include <openssl/params.h>

#include <array>
#include <memory>
#include <string>

#include "host/cipher/cipher_error.h"

namespace cipher {
namespace {

struct KdfDeleter {
    void operator()(EVP_KDF* kdf) const { EVP_KDF_free(kdf); }
    void operator()(EVP_KDF_CTX* context) const { EVP_KDF_CTX_free(context); }
};

// Looked up once: a look-up by name costs more than deriving the key of a file.
EVP_KDF* hkdf() {
    static const std::unique_ptr<EVP_KDF, KdfDeleter> kdf(EVP_KDF_fetch(nullptr, OSSL_KDF_NAME_HKDF, nullptr));
    return kdf.get();
}

}  // namespace

TreeKey deriveTreeKey(std::string_view keyText, const TreeSalt& salt, std::uint32_t iterations) {
    TreeKey key;
    if (PKCS5_PBKDF2_HMAC(keyText.data(), static_cast<int>(keyText.size()), salt.data(), static_cast<int>(salt.size()),
                          static_cast<int>(iterations), EVP_sha512(), static_cast<int>(TreeKey::size()),
                          key.data()) != 1) {
        throw Failure("cannot derive the key");
    }
    return key;
}

FileKey deriveFileKey(const TreeKey& treeKey, const FileSalt& salt) {
    // The library takes its parameters by pointers to non-const.
    TreeKey material = treeKey;
    FileSalt saltBytes = salt;
    std::string digest = "SHA256";
    std::string info = "chat_transfer file key 1";
    const std::array<OSSL_PARAM, 5> parameters = {
        OSSL_PARAM_construct_utf8_string(OSSL_KDF_PARAM_DIGEST, digest.data(), digest.size()),
        OSSL_PARAM_construct_octet_string(OSSL_KDF_PARAM_KEY, material.data(), TreeKey::size()),
        OSSL_PARAM_construct_octet_string(OSSL_KDF_PARAM_SALT, saltBytes.data(), saltBytes.size()),
        OSSL_PARAM_construct_octet_string(OSSL_KDF_PARAM_INFO, info.data(), info.size()), OSSL_PARAM_construct_end()};
    const std::unique_ptr<EVP_KDF_CTX, KdfDeleter> context(EVP_KDF_CTX_new(hkdf()));
    FileKey key;
    if (!context || EVP_KDF_derive(context.get(), key.data(), FileKey::size(), parameters.data()) != 1) {
        throw Failure("cannot derive the key of the file");
    }
    return key;
}

KeyTextHash hashKeyText(std::string_view keyText) {
    KeyTextHash hash;
    if (EVP_Digest(keyText.data(), keyText.size(), hash.data(), nullptr, EVP_sha256(), nullptr) != 1) {
        throw Failure("cannot hash the key");
    }
    return hash;
}

}  // namespace cipher
