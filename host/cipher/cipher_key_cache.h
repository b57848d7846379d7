#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <mutex>
#include <string_view>

#include "host/cipher/cipher_container.h"
#include "host/cipher/cipher_key.h"

namespace cipher {

/// What a writer needs to encrypt files that share one slow derivation.
struct WritingKey {
    std::uint32_t iterations;
    TreeSalt treeSalt;
    TreeKey treeKey;
};

/// Remembers the last few tree keys, so that the files of a tree share one slow derivation.
///
/// Files encrypted by one process under one key text share a random tree salt. Somebody guessing the key text therefore
/// pays one derivation for each guess, however many of these files he holds; separate salts would not make him pay
/// more, as breaking one file yields the key text of all. What the shared salt does show is that files come from the
/// same run. Salts found in files are never adopted for writing: whoever prepared the file could have computed guesses
/// for it.
///
/// Bounded: at most `kCapacity` keys stay in memory, the least recently used one is wiped first, and all are wiped when
/// the process exits normally. A hostile tree in which each file has its own tree salt costs one derivation for each
/// file.
///
/// Thread-safe. A derivation happens under the lock, so threads that ask for one key derive it once.
class KeyCache {
public:
    static constexpr std::size_t kCapacity = 8;

    /// The cache that all CAES objects share.
    [[nodiscard]] static KeyCache& ofProcess();

    /// The key for encrypting under this key text (1 to 65,536 bytes): the one in use since this cache first saw the
    /// text, or, at first and after eviction, one with a fresh salt. Throws Failure when the crypto library does.
    [[nodiscard]] WritingKey forWriting(std::string_view keyText);

    /// The key for decrypting a file that names these parameters. Throws Failure when the crypto library does.
    [[nodiscard]] TreeKey forReading(std::string_view keyText, const TreeSalt& salt, std::uint32_t iterations);

    /// How many slow derivations this cache has made since it exists.
    [[nodiscard]] std::uint64_t derivations() const;

private:
    struct Entry {
        KeyTextHash keyTextHash;
        WritingKey key;
        bool ownSalt;  // made here, hence good for writing
    };

    template <typename Predicate>
    [[nodiscard]] const Entry* find(Predicate matches);
    [[nodiscard]] const Entry& derive(std::string_view keyText, const KeyTextHash& hash, const TreeSalt& salt,
                                      std::uint32_t iterations, bool ownSalt);

    mutable std::mutex mutex_;
    std::list<Entry> entries_;  // the most recently used one first
    std::uint64_t derivations_ = 0;
};

}  // namespace cipher
