// Random numbers that are the same on every machine: those of the standard library's distributions are not.
#pragma once

#include <cstdint>

namespace app {

/// SplitMix64.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    [[nodiscard]] std::uint64_t next() {
        state_ += 0x9E3779B97F4A7C15U;
        std::uint64_t mixed = state_;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31);
    }

    /// A number of [0, bound); `bound` is at least 1. The slight bias of the remainder does not matter for samples.
    [[nodiscard]] std::uint64_t below(std::uint64_t bound) { return next() % bound; }

    /// True once in `many` times.
    [[nodiscard]] bool oneIn(std::uint64_t many) { return below(many) == 0; }

    /// An element of an array.
    template <class List>
    [[nodiscard]] typename List::value_type pick(const List& list) {
        return list[static_cast<std::size_t>(below(list.size()))];
    }

private:
    std::uint64_t state_;
};

}  // namespace app
