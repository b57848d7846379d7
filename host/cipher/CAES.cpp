#include "host/CAES.h"

#include <cstring>
#include <exception>
#include <string_view>

#include "host/cipher/cipher_container.h"
#include "host/cipher/cipher_error.h"
#include "host/cipher/cipher_files.h"
#include "host/cipher/cipher_key_cache.h"
#include "host/cipher/cipher_stream.h"

struct CAES::Buffers {
    cipher::ChunkPair chunks;
};

namespace {

constexpr std::size_t kErrorSize = 256;
constexpr std::size_t kMaxKeyTextSize = 65536;

bool isMissing(const char* text) {
    return text == nullptr || *text == '\0';
}

void requireArguments(const char* key, const char* input, const char* output) {
    if (isMissing(key)) {
        throw cipher::Failure("no key");
    }
    if (std::strlen(key) > kMaxKeyTextSize) {
        throw cipher::Failure("key text too long");
    }
    if (isMissing(input)) {
        throw cipher::Failure("no input path");
    }
    if (isMissing(output)) {
        throw cipher::Failure("no output path");
    }
}

void encryptFile(std::string_view keyText, const char* input, const char* output, cipher::ChunkPair& chunks) {
    cipher::InputFile source(input);
    const cipher::WritingKey key = cipher::KeyCache::ofProcess().forWriting(keyText);
    cipher::OutputFile target(output);
    cipher::sealFile(source, target, {key.iterations, key.treeSalt, cipher::randomFileSalt()}, key.treeKey, chunks);
    target.commit();
}

void decryptFile(std::string_view keyText, const char* input, const char* output, cipher::ChunkPair& chunks) {
    cipher::InputFile source(input);
    const cipher::Header header = cipher::readHeader(source);
    const cipher::TreeKey treeKey =
        cipher::KeyCache::ofProcess().forReading(keyText, header.treeSalt, header.iterations);
    cipher::OutputFile target(output);
    cipher::openFile(source, target, header, treeKey, chunks);
    target.commit();
}

void report(char* error, std::string_view reason) {
    if (error == nullptr) {
        return;
    }
    const std::size_t length = reason.copy(error, kErrorSize - 1);
    error[length] = '\0';
}

}  // namespace

CAES::CAES() : buffers_(std::make_unique<Buffers>()) {}

CAES::~CAES() = default;

int CAES::File_Aes_Go_Block(bool encrypt, const char* key, const char* input, const char* output, char* error) {
    try {
        requireArguments(key, input, output);
        if (encrypt) {
            encryptFile(key, input, output, buffers_->chunks);
        } else {
            decryptFile(key, input, output, buffers_->chunks);
        }
        return 0;
    } catch (const std::exception& failure) {
        report(error, failure.what());
        return 1;
    }
}
