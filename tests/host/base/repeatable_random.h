// Random numbers that are the same in every run: a failure can be looked at again.
#pragma once

#include <random>

namespace test {

inline std::mt19937_64 repeatableRandom() {
    return std::mt19937_64(1);  // NOLINT(cert-msc32-c,cert-msc51-cpp): predictable on purpose
}

}  // namespace test
