#pragma once

#include <cstdint>
#include <string_view>

#include "host/cipher/cipher_container.h"
#include "host/cipher/cipher_secret.h"

/// The way from a key text to the AES key of one file.
namespace cipher {

using KeyTextHash = Secret<32>;
using TreeKey = Secret<32>;
using FileKey = Secret<32>;

/// The slow step: PBKDF2 with HMAC-SHA-512 (RFC 8018, section 5.2) over the key text's bytes, 32 bytes out. Takes
/// 0.1 to 0.3 seconds at kWritingIterations. keyText holds at most 65,536 bytes. Throws Failure when the crypto library
/// does.
[[nodiscard]] TreeKey deriveTreeKey(std::string_view keyText, const TreeSalt& salt, std::uint32_t iterations);

/// The fast step: HKDF with SHA-256 (RFC 5869), input key material the tree key, salt the file salt, info the ASCII
/// text "chat_transfer file key 1", 32 bytes out. Throws Failure when the crypto library does.
[[nodiscard]] FileKey deriveFileKey(const TreeKey& treeKey, const FileSalt& salt);

/// SHA-256 (FIPS 180-4) of a key text, to recognise it again without keeping it. As guessable as the text itself, hence
/// wiped like a key. Throws Failure when the crypto library does.
[[nodiscard]] KeyTextHash hashKeyText(std::string_view keyText);

}  // namespace cipher
