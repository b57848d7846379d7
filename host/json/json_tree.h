// A JSON text as a tree of the library's values.
//
// The library's own parser accepts the same texts and makes the same of them (tests hold both against each other), but
// it looks each name of an object up among all names before it, and recurses for each level: a stranger's object of
// 100,000 names would cost a minute, and a text of 2,000 levels most of a phone's stack.
#pragma once

#include <string>

#include "host/json/json_owner.h"

namespace tools {

/// The tree of `text`, which is changed by it; null when it is no valid JSON. std::bad_alloc when memory runs out.
[[nodiscard]] JsonDocument readJsonTree(std::string& text);

}  // namespace tools
