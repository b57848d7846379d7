// Asks for a key on the terminal, without echo.
#pragma once

#include "app/account/secret_text.h"

namespace app {

/// A new key is asked for twice: a slip would lock the account for good.
enum class KeyPurpose { unlock, choose };

/// True when there is a terminal to ask on.
[[nodiscard]] bool canAskForKey();

/// Throws Failure when there is no terminal, the prompt is cancelled, or the two texts differ.
[[nodiscard]] SecretText askForKey(KeyPurpose purpose);

}  // namespace app
