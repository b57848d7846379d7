// What the program calls itself.
#pragma once

namespace app {

inline constexpr const char* kProgramName = "chat-transfer";

/// The version of this build, such as "1.2.3".
[[nodiscard]] const char* programVersion();

}  // namespace app
