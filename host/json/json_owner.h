// Ownership of JSON documents by type.
#pragma once

#include <memory>

#include "host/json.h"

namespace tools {

struct FreeJson {
    void operator()(JSON_Value* value) const { json_value_free(value); }
};

/// Owns a JSON value that has no parent. release() when it is appended to another value.
using JsonDocument = std::unique_ptr<JSON_Value, FreeJson>;

}  // namespace tools
