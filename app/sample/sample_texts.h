// What people write in samples: several scripts, emoji, a few words each.
#pragma once

#include <string>

#include "app/sample/random.h"

namespace app {

/// One short message.
[[nodiscard]] std::string makeText(Random& random);

/// Twenty lines of text.
[[nodiscard]] std::string makeNotes(Random& random);

/// The name of a person or of a group.
[[nodiscard]] std::string personName(Random& random);
[[nodiscard]] std::string groupName(Random& random);

}  // namespace app
