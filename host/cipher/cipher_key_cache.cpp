#include "host/cipher/cipher_key_cache.h"

#include <algorithm>

namespace cipher {

KeyCache& KeyCache::ofProcess() {
    static KeyCache cache;
    return cache;
}

WritingKey KeyCache::forWriting(std::string_view keyText) {
    const KeyTextHash hash = hashKeyText(keyText);
    const std::lock_guard<std::mutex> lock(mutex_);
    const Entry* known = find([&](const Entry& entry) { return entry.ownSalt && entry.keyTextHash == hash; });
    if (known != nullptr) {
        return known->key;
    }
    return derive(keyText, hash, randomTreeSalt(), kWritingIterations, true).key;
}

TreeKey KeyCache::forReading(std::string_view keyText, const TreeSalt& salt, std::uint32_t iterations) {
    const KeyTextHash hash = hashKeyText(keyText);
    const std::lock_guard<std::mutex> lock(mutex_);
    const Entry* known = find([&](const Entry& entry) {
        return entry.key.treeSalt == salt && entry.key.iterations == iterations && entry.keyTextHash == hash;
    });
    if (known != nullptr) {
        return known->key.treeKey;
    }
    return derive(keyText, hash, salt, iterations, false).key.treeKey;
}

std::uint64_t KeyCache::derivations() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return derivations_;
}

// Moves the entry it finds to the front; null when there is none.
template <typename Predicate>
const KeyCache::Entry* KeyCache::find(Predicate matches) {
    const auto found = std::find_if(entries_.begin(), entries_.end(), matches);
    if (found == entries_.end()) {
        return nullptr;
    }
    entries_.splice(entries_.begin(), entries_, found);
    return &entries_.front();
}

const KeyCache::Entry& KeyCache::derive(std::string_view keyText, const KeyTextHash& hash, const TreeSalt& salt,
                                        std::uint32_t iterations, bool ownSalt) {
    ++derivations_;
    entries_.push_front({hash, {iterations, salt, deriveTreeKey(keyText, salt, iterations)}, ownSalt});
    if (entries_.size() > kCapacity) {
        entries_.pop_back();
    }
    return entries_.front();
}

}  // namespace cipher
