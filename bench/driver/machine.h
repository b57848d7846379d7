// What the figures were measured on: nothing that names the machine or its owner.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "bench/driver/workshop.h"

namespace bench {

/// Names and values, for example ("Processor", "...").
std::vector<std::pair<std::string, std::string>> describeMachine(const Workshop& workshop);

/// Memory that programs can still have, in bytes.
long long availableMemory();

}  // namespace bench
