// JSON as tests write it, independent of the writer that they test.
#pragma once

#include <string>

namespace test {

/// `text` as a JSON string. Bytes that are no UTF-8 go through as they are.
std::string quoted(const std::string& text);

}  // namespace test
