// Overwriting secrets.
#pragma once

#include <string>

namespace tools {

/// Overwrites all that the string's memory holds, in a way that the compiler may not optimise away, and empties it.
inline void wipe(std::string& text) {
    text.resize(text.capacity());
    volatile char* bytes = text.data();
    for (std::size_t i = 0; i < text.size(); ++i)
        bytes[i] = '\0';
    text.clear();
}

}  // namespace tools
