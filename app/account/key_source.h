// Where the key of an account comes from: a file, the environment or a prompt. Never an argument: those of a running
// program can be read by everybody on the machine, and they stay in the shell's history.
#pragma once

#include <string>

#include "app/account/account.h"
#include "app/account/secret_text.h"

namespace app {

/// The ways to give a key, as messages name them behind "give it with".
inline constexpr const char* kWaysToGiveAKey = "--key-file FILE, in CHAT_TRANSFER_KEY or with --ask-key";

struct KeyOptions {
    std::string keyFile;
    bool askKey = false;
};

/// The key from the key file, the prompt that --ask-key asks for, or CHAT_TRANSFER_KEY (which is erased from the
/// environment); where there is none of these and the account's main database is encrypted, from a prompt if there is a
/// terminal. Empty when there is no key. Throws Failure for a key file that cannot be used and for a cancelled prompt.
SecretText findKey(const KeyOptions& options, const Account& account);

}  // namespace app
