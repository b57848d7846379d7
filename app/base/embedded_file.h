// A file of the source tree that became part of the program when it was built.
#pragma once

#include <string_view>

namespace app {

struct EmbeddedFile {
    std::string_view bytes;
    std::string_view sha256;  ///< of the bytes, in hexadecimal digits
};

}  // namespace app
