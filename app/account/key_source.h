// Where the key of an account comes from: a file, the environment or a prompt. Never an argument: those of a running
// program can be read by everybody on the machine, and they stay in the shell's history.
#pragma once

#include <string>

#include "app/account/key_options.h"
#include "app/account/key_prompt.h"
#include "app/account/secret_text.h"
#include "app/places/account_place.h"

namespace app {

/// The key from the key file, the prompt that --ask-key asks for, or CHAT_TRANSFER_KEY (which is erased from the
/// environment); where there is none of these and the account's main database is encrypted, from a prompt if there is a
/// terminal. Empty when there is no key. Throws Failure for a key file that cannot be used and for a cancelled prompt.
[[nodiscard]] SecretText findKey(const KeyOptions& options, const Account& account);

/// The key of tree files: from where findKey() takes it. Empty when there is none.
[[nodiscard]] SecretText findTreeKey(const KeyOptions& options, const std::string& folder, KeyPurpose purpose);

/// The key of tree files: from where findKey() takes it, or asked for. Throws Failure when there is none.
[[nodiscard]] SecretText requireTreeKey(const KeyOptions& options, const std::string& folder, KeyPurpose purpose);

}  // namespace app
