#include "fuzz/property.h"

#include <cstdlib>
#include <iostream>

namespace fuzz {

void require(bool holds, const char* property) {
    if (holds) return;
    std::cerr << "property violated: " << property << std::endl;
    std::abort();
}

unsigned Input::takeByte() {
    if (bytes_.empty()) return 0;
    const auto byte = static_cast<unsigned char>(bytes_.front());
    bytes_.erase(0, 1);
    return byte;
}

}  // namespace fuzz
