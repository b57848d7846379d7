#include "host/base/text_buffer.h"

#include <utility>

namespace tools {

void TextBuffer::grow(std::size_t size) {
    const std::size_t capacity = (size_ + size) * 2;
    std::unique_ptr<char, Release> larger(static_cast<char*>(::operator new(capacity)));
    text().copy(larger.get(), size_);
    bytes_ = std::move(larger);
    capacity_ = capacity;
}

}  // namespace tools
