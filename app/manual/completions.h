// Completion of command lines in the usual shells.
#pragma once

#include <string>
#include <vector>

#include "app/manual/described.h"

namespace app {

[[nodiscard]] std::string bashCompletion(const std::string& program, const std::vector<DescribedCommand>& commands);
[[nodiscard]] std::string zshCompletion(const std::string& program, const std::vector<DescribedCommand>& commands);
[[nodiscard]] std::string fishCompletion(const std::string& program, const std::vector<DescribedCommand>& commands);

}  // namespace app
