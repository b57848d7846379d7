// Attachment messages of a sample: the body that names the files, and the files themselves.
#pragma once

#include <string>

#include "app/sample/random.h"

namespace app {

/// Writes the files of an attachment message into the account's folders and returns the message's body. The names are
/// made from `messageId` and `day` ("2024-06-15"), so that they differ from message to message. Throws Failure.
[[nodiscard]] std::string makeAttachment(const std::string& accountRoot, int msgType, long long messageId,
                                         const std::string& day, Random& random);

}  // namespace app
