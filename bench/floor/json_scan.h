// A scanner for message files of the project's own making: keys are expected where the writer puts them, and anything
// else ends the program. That is as little as reading such a file can cost.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace bench {

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

    template <std::size_t Size>
    bool next(const char (&literal)[Size]) {
        if (end_ - at_ < static_cast<std::ptrdiff_t>(Size - 1) || std::memcmp(at_, literal, Size - 1) != 0)
            return false;
        at_ += Size - 1;
        return true;
    }

    template <std::size_t Size>
    void expect(const char (&literal)[Size]) {
        if (!next(literal)) throw std::runtime_error(std::string("expected ") + literal);
    }

    long long number() {
        long long value = 0;
        const std::from_chars_result result = std::from_chars(at_, end_, value);
        if (result.ec != std::errc()) throw std::runtime_error("expected a number");
        at_ = result.ptr;
        return value;
    }

    /// A string, decoded into the store.
    std::string_view text() {
        expect("\"");
        // Decoding only shortens: no string is longer than the rest of the file.
        char* const begin = texts_.reserve(static_cast<std::size_t>(end_ - at_) + 2 * kWide);
        char* out = begin;
        for (;;) {
            out = copyPlain(out);
            const char c = *at_++;
            if (c == '"') break;
            out = decode(out);
        }
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
    static constexpr std::size_t kWide = 16;

    char* copyPlain(char* out) {
#ifdef __SSE2__
        for (;;) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at_));
            const __m128i special =
                _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('"')), _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\\')));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes);
            const auto found = static_cast<unsigned>(_mm_movemask_epi8(special));
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

    char* decode(char* out) {
        constexpr std::string_view kLetters = "\"\\/bfnrt";
        constexpr std::string_view kNamed = "\"\\/\b\f\n\r\t";
        const char letter = *at_++;
        const std::size_t named = kLetters.find(letter);
        if (named != std::string_view::npos) {
            *out++ = kNamed[named];
            return out;
        }
        unsigned code = 0;
        const bool valid = letter == 'u' && std::from_chars(at_, at_ + 4, code, 16).ptr == at_ + 4 && code < 0x80;
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
