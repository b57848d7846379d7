// Memory that runs out, or takes its time, on request.
#pragma once

#include <cstddef>

namespace test {

/// While an object lives, every block of at least `size` bytes that operator new is asked for meets `event` first,
/// which may throw std::bad_alloc. One at a time.
class LargeBlocks {
public:
    using Event = void (*)();

    LargeBlocks(std::size_t size, Event event);
    ~LargeBlocks();
    LargeBlocks(const LargeBlocks&) = delete;
    LargeBlocks& operator=(const LargeBlocks&) = delete;
};

}  // namespace test
