// JSON by hand, for the floor. Written: one reservation for each value, then plain stores. Scanned: keys are expected
// where the project's writer puts them, and anything else ends the program, which is as little as reading such a file
// can cost. Both take sixteen bytes of text at a time where the processor can.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

/// For what handles a literal: inlined, it knows the literal's length. A lambda says so behind its parameters.
#define BENCH_INLINED_LAMBDA __attribute__((always_inline))
#define BENCH_INLINE BENCH_INLINED_LAMBDA inline

namespace bench {

// --- Writing ---

/// Bytes that grow at their end.
class Output {
public:
    /// Room for `size` more bytes at the end.
    char* reserve(std::size_t size) {
        if (size_ + size > capacity_) grow(size_ + size);
        return bytes_.get() + size_;
    }
    /// Everything before `end`, which lies in what reserve() gave, is now part of the bytes.
    void take(const char* end) { size_ = static_cast<std::size_t>(end - bytes_.get()); }

    /// Empties it and keeps the room.
    void clear() { size_ = 0; }

    std::size_t size() const { return size_; }
    std::string_view text() const { return {bytes_.get(), size_}; }

private:
    struct Free {
        void operator()(char* bytes) const { std::free(bytes); }
    };

    void grow(std::size_t needed) {
        auto* bytes = static_cast<char*>(std::realloc(bytes_.get(), needed * 2));
        if (bytes == nullptr) throw std::bad_alloc();
        static_cast<void>(bytes_.release());
        bytes_.reset(bytes);
        capacity_ = needed * 2;
    }

    std::unique_ptr<char, Free> bytes_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

/// What writer and scanner name by a letter behind the backslash, in the same order.
inline constexpr std::string_view kEscaped = "\"\\/\b\f\n\r\t";
inline constexpr std::string_view kEscapeLetters = "\"\\/bfnrt";

/// The most that a text of `size` bytes takes, with room for the wide stores behind its end.
inline std::size_t quotedRoom(std::size_t size) {
    return size * 6 + 32;
}

inline constexpr std::size_t kNumberRoom = 20;

BENCH_INLINE char* put(char* out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

inline char* putNumber(char* out, long long number) {
    return std::to_chars(out, out + kNumberRoom, number).ptr;
}

inline char* putEscaped(char* out, char c) {
    constexpr std::string_view kHex = "0123456789abcdef";
    *out++ = '\\';
    const std::size_t named = kEscaped.find(c);
    if (named != std::string_view::npos) {
        *out++ = kEscapeLetters[named];
        return out;
    }
    out = put(out, "u00");
    *out++ = kHex[static_cast<unsigned char>(c) >> 4U];
    *out++ = kHex[static_cast<unsigned char>(c) & 0xFU];
    return out;
}

#ifdef __SSE2__
inline __m128i anyOf(__m128i bytes, char one, char other) {
    return _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(one)), _mm_cmpeq_epi8(bytes, _mm_set1_epi8(other)));
}
#endif

inline char* putQuoted(char* out, std::string_view text) {
    const char* at = text.data();
    const char* end = at + text.size();
    *out++ = '"';
#ifdef __SSE2__
    while (end - at >= 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const __m128i control = _mm_cmpeq_epi8(_mm_min_epu8(bytes, _mm_set1_epi8(0x1F)), bytes);
        const __m128i special = _mm_or_si128(anyOf(bytes, '"', '\\'), _mm_or_si128(anyOf(bytes, '/', '/'), control));
        const auto found = static_cast<unsigned>(_mm_movemask_epi8(special));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes);
        const int plain = found == 0 ? 16 : __builtin_ctz(found);
        at += plain;
        out += plain;
        if (found != 0) out = putEscaped(out, *at++);
    }
#endif
    for (; at != end; ++at) {
        const bool plain = static_cast<unsigned char>(*at) >= 0x20 && *at != '"' && *at != '\\' && *at != '/';
        out = plain ? put(out, {at, 1}) : putEscaped(out, *at);
    }
    *out++ = '"';
    return out;
}

/// Ids joined by ";" as an array. The maker's lists are well-formed: digits and semicolons.
inline char* putList(char* out, std::string_view joined) {
    *out++ = '[';
    for (const char c : joined)
        *out++ = c == ';' ? ',' : c;
    *out++ = ']';
    return out;
}

// --- Scanning ---

/// Keeps texts for the life of the program, in large blocks.
class TextStore {
public:
    /// Room for `size` bytes; keep() says how many of them stay.
    char* reserve(std::size_t size) {
        constexpr std::size_t kBlock = 1U << 22U;
        if (static_cast<std::size_t>(end_ - at_) < size) {
            const std::size_t capacity = size > kBlock ? size : kBlock;
            blocks_.push_back(std::unique_ptr<char[]>(new char[capacity]));  // not zeroed, unlike make_unique's
            at_ = blocks_.back().get();
            end_ = at_ + capacity;
        }
        return at_;
    }
    void keep(char* end) { at_ = end; }

private:
    std::vector<std::unique_ptr<char[]>> blocks_;
    char* at_ = nullptr;
    char* end_ = nullptr;
};

class Scanner {
public:
    /// Behind `text` stand sixteen quotes: an unfinished string ends there.
    Scanner(std::string_view text, TextStore& texts) : at_(text.data()), end_(at_ + text.size()), texts_(texts) {}

    /// Passes over the literal when it comes next.
    BENCH_INLINE bool next(std::string_view literal) {
        const auto left = static_cast<std::size_t>(end_ - at_);
        if (left < literal.size() || std::memcmp(at_, literal.data(), literal.size()) != 0) return false;
        at_ += literal.size();
        return true;
    }

    BENCH_INLINE void expect(std::string_view literal) {
        if (!next(literal)) throw std::runtime_error("expected " + std::string(literal));
    }

    /// Passes over `begin`, items that scanItem() reads, and the list's end.
    template <class ScanItem>
    void list(std::string_view begin, ScanItem scanItem) {
        expect(begin);
        while (!next("]")) {
            next(",");
            scanItem();
        }
    }

    template <class Integer>
    void number(Integer& value) {
        const std::from_chars_result result = std::from_chars(at_, end_, value);
        if (result.ec != std::errc()) throw std::runtime_error("expected a number");
        at_ = result.ptr;
    }

    /// A string, decoded into the store.
    std::string_view text() {
        expect("\"");
        // Decoding only shortens: no string is longer than the rest of the file.
        char* const begin = texts_.reserve(static_cast<std::size_t>(end_ - at_) + 32);
        char* out = copyPlain(begin);
        while (*at_++ != '"')
            out = copyPlain(decode(out));
        texts_.keep(out);
        return {begin, static_cast<std::size_t>(out - begin)};
    }

    /// Passes over an array of numbers.
    void skipList() {
        const void* close = std::memchr(at_, ']', static_cast<std::size_t>(end_ - at_));
        if (close == nullptr) throw std::runtime_error("expected ]");
        at_ = static_cast<const char*>(close) + 1;
    }

private:
    // Up to the next quote or backslash.
    char* copyPlain(char* out) {
#ifdef __SSE2__
        for (;;) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at_));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes);
            const auto found = static_cast<unsigned>(_mm_movemask_epi8(anyOf(bytes, '"', '\\')));
            const int plain = found == 0 ? 16 : __builtin_ctz(found);
            at_ += plain;
            out += plain;
            if (found != 0) return out;
        }
#else
        while (*at_ != '"' && *at_ != '\\')
            *out++ = *at_++;
        return out;
#endif
    }

    // What stands behind a backslash.
    char* decode(char* out) {
        const std::size_t named = kEscapeLetters.find(*at_++);
        if (named != std::string_view::npos) {
            *out++ = kEscaped[named];
            return out;
        }
        unsigned code = 0;
        const bool valid = at_[-1] == 'u' && std::from_chars(at_, at_ + 4, code, 16).ptr == at_ + 4 && code < 0x80;
        if (!valid) throw std::runtime_error("unexpected escape");
        at_ += 4;
        *out++ = static_cast<char>(code);
        return out;
    }

    const char* at_;
    const char* end_;
    TextStore& texts_;
};

}  // namespace bench
