// The manual page, in the format of man(7).
#pragma once

#include <string>
#include <vector>

#include "app/manual/described.h"

namespace app {

/// What the page says of the program besides its commands.
struct ManualHead {
    std::string name;
    std::string version;
    std::string text;   ///< one paragraph
    std::string notes;  ///< lines that stay as they are: examples, exit codes
};

[[nodiscard]] std::string manualPage(const ManualHead& head, const std::vector<DescribedCommand>& commands);

}  // namespace app
