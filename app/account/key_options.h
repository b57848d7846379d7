// How a user gives the key of encrypted databases and trees.
#pragma once

#include <string>

namespace app {

/// The ways to give a key, as messages name them behind "give it with".
inline constexpr const char* kWaysToGiveAKey = "--key-file FILE, in CHAT_TRANSFER_KEY or with --ask-key";

struct KeyOptions {
    std::string keyFile;
    bool askKey = false;
};

}  // namespace app
