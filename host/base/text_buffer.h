// A text that grows at its end by many small pieces. std::string grows as well, but each append to it is a call that
// looks at both texts first; a message of a package has forty pieces.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <string_view>

namespace tools {

class TextBuffer {
public:
    TextBuffer& operator+=(std::string_view piece) {
        size_ += piece.copy(reserve(piece.size()), piece.size());
        return *this;
    }
    TextBuffer& operator+=(char c) {
        *reserve(1) = c;
        ++size_;
        return *this;
    }

    /// Room for `size` bytes behind the text; extendTo() makes those before `end` part of it.
    [[nodiscard]] char* reserve(std::size_t size) {
        if (capacity_ - size_ < size) grow(size);
        return bytes_.get() + size_;
    }
    void extendTo(const char* end) { size_ = static_cast<std::size_t>(end - bytes_.get()); }

    /// Empties the text and keeps the room.
    void clear() { size_ = 0; }

    /// Valid until the text is changed.
    [[nodiscard]] std::string_view text() const { return {bytes_.get(), size_}; }

private:
    struct Release {
        void operator()(char* bytes) const { ::operator delete(bytes); }
    };

    void grow(std::size_t size);

    // A string or vector would clear the room that is written next.
    std::unique_ptr<char, Release> bytes_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace tools
