#pragma once

#include <string>

namespace app {

/// "voice" for 3, "image" for 5, "file" for 6, "pictures" for 28, "video" for 89, "type 7" for others.
[[nodiscard]] std::string typeName(int msgType);

}  // namespace app
