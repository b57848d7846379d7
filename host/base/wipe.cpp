#include "host/base/wipe.h"

#include <openssl/crypto.h>

namespace tools {

void wipe(std::string& text) noexcept {
    text.resize(text.capacity());
    OPENSSL_cleanse(text.data(), text.size());
    text.clear();
}

}  // namespace tools
