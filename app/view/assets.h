// Our own files that pages carry: they stand in assets/ and become part of the program when it is built.
#pragma once

#include <string_view>

namespace app::view {

struct Asset {
    std::string_view text;
    std::string_view sha256;  ///< of the text, in hexadecimal digits
};

extern const Asset kStyle;
extern const Asset kSearchScript;

}  // namespace app::view
