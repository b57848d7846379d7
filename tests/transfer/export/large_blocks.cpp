#include "tests/transfer/export/large_blocks.h"

#include <cstdlib>
#include <new>

namespace {

std::size_t largeSize = 0;
test::LargeBlocks::Event largeEvent = nullptr;

}  // namespace

namespace test {

LargeBlocks::LargeBlocks(std::size_t size, Event event) {
    largeSize = size;
    largeEvent = event;
}

LargeBlocks::~LargeBlocks() {
    largeEvent = nullptr;
}

}  // namespace test

// The program's own: every other form of new and delete goes through these.
void* operator new(std::size_t size) {
    if (largeEvent != nullptr && size >= largeSize) largeEvent();
    void* block = std::malloc(size != 0 ? size : 1);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}
