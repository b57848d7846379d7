#pragma once

#include <openssl/crypto.h>

#include <array>
#include <cstddef>

namespace cipher {

/// N bytes of key material. Every copy, including temporaries, is overwritten when it ends, in a way the compiler may
/// not optimise away.
template <std::size_t N>
class Secret {
public:
    Secret() = default;
    Secret(const Secret&) = default;
    Secret(Secret&&) noexcept = default;
    Secret& operator=(const Secret&) = default;
    Secret& operator=(Secret&&) noexcept = default;
    ~Secret() { OPENSSL_cleanse(bytes_.data(), N); }

    /// The N bytes; the pointer is valid as long as the object.
    [[nodiscard]] unsigned char* data() { return bytes_.data(); }
    [[nodiscard]] const unsigned char* data() const { return bytes_.data(); }

    /// Always N.
    [[nodiscard]] static constexpr std::size_t size() { return N; }

    /// Compares in a time that does not depend on the contents.
    [[nodiscard]] bool operator==(const Secret& other) const { return CRYPTO_memcmp(data(), other.data(), N) == 0; }

private:
    std::array<unsigned char, N> bytes_{};
};

}  // namespace cipher
