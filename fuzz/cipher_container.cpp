// An encrypted file: what was encrypted comes back, and nothing else decrypts.
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

#include "fuzz/property.h"
#include "fuzz/sandbox.h"
#include "host/CAES.h"
#include "host/cipher/cipher_container.h"
#include "host/cipher/cipher_error.h"

namespace {

namespace fs = std::filesystem;
using fuzz::require;

// Encrypts or decrypts texts by way of files.
class Cipher {
public:
    [[nodiscard]] std::optional<std::string> encrypt(const std::string& plain) const { return run(true, plain); }
    [[nodiscard]] std::optional<std::string> decrypt(const std::string& container) const {
        return run(false, container);
    }

private:
    [[nodiscard]] std::optional<std::string> run(bool encrypts, const std::string& bytes) const {
        const std::string in = sandbox_.backup() + "/in";
        const std::string out = sandbox_.backup() + "/out";
        fs::remove(out);
        fuzz::Sandbox::write(in, bytes);
        std::array<char, 256> error{};
        CAES cipher;
        const int code = cipher.File_Aes_Go_Block(encrypts, "a key text", in.c_str(), out.c_str(), error.data());
        require((code == 0) == (error[0] == '\0'), "a failure, and nothing else, has a reason");
        require((code == 0) == fs::exists(out), "the output is there on success and only then");
        if (code != 0) return std::nullopt;
        std::ifstream file(out, std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }

    fuzz::Sandbox sandbox_;
};

std::optional<cipher::Header> headerOf(const std::string& container) try {
    cipher::HeaderBytes bytes{};
    const std::size_t present = container.copy(reinterpret_cast<char*>(bytes.data()), bytes.size());
    return cipher::decodeHeader(bytes, present);
} catch (const cipher::Failure&) {
    return std::nullopt;
}

// Deriving a key is slow on purpose: containers that ask for another one than the sample's say nothing here.
bool needsAnotherKey(const std::string& container, const std::string& sample) {
    const std::optional<cipher::Header> header = headerOf(container);
    const cipher::Header known = headerOf(sample).value();
    return header && (header->iterations != known.iterations || header->treeSalt != known.treeSalt);
}

// The sample with bytes changed, one for each pair of input bytes.
std::string changed(std::string sample, const std::string& changes) {
    for (std::size_t i = 0; i + 1 < changes.size(); i += 2) {
        const std::size_t place = static_cast<unsigned char>(changes[i]) % sample.size();
        sample[place] = static_cast<char>(sample[place] ^ changes[i + 1]);
    }
    return sample;
}

void checkForeign(const Cipher& cipher, const std::string& container, const std::string& sample) {
    if (needsAnotherKey(container, sample)) return;
    require(cipher.decrypt(container).has_value() == (container == sample), "only what we encrypted decrypts");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Cipher cipher;
    static const std::string sample = cipher.encrypt("a text that nobody else may read").value();
    fuzz::Input input(data, size);
    const unsigned choice = input.takeByte() % 4;
    if (choice == 0) {
        const std::optional<std::string> container = cipher.encrypt(input.rest());
        require(container && cipher.decrypt(*container) == input.rest(), "what was encrypted comes back");
    } else if (choice == 1) {
        checkForeign(cipher, changed(sample, input.rest()), sample);
    } else if (choice == 2) {
        checkForeign(cipher, sample.substr(0, cipher::kHeaderSize) + input.rest(), sample);
    } else {
        checkForeign(cipher, input.rest(), sample);
    }
    return 0;
}
