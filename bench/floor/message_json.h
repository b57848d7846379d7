// The message object of the package, written by hand for the floor: columns go from the statement straight into the
// text of the day that they belong to. One reservation per message, then plain stores; sixteen bytes of text at a time
// where the processor can.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "bench/sqlite_handles.h"

namespace bench {

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

    const char* data() const { return bytes_.get(); }
    std::size_t size() const { return size_; }

private:
    struct Free {
        void operator()(char* bytes) const { std::free(bytes); }
    };

    void grow(std::size_t needed) {
        const std::size_t capacity = needed * 2;
        auto* bytes = static_cast<char*>(std::realloc(bytes_.get(), capacity));
        if (bytes == nullptr) throw std::bad_alloc();
        static_cast<void>(bytes_.release());
        bytes_.reset(bytes);
        capacity_ = capacity;
    }

    std::unique_ptr<char, Free> bytes_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

/// The most that a text of `size` bytes takes, with room for the wide stores behind its end.
inline std::size_t quotedRoom(std::size_t size) {
    return size * 6 + 32;
}

inline constexpr std::size_t kNumberRoom = 20;

template <std::size_t Size>
char* put(char* out, const char (&literal)[Size]) {
    std::memcpy(out, literal, Size - 1);
    return out + Size - 1;
}

inline char* put(char* out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

inline char* putNumber(char* out, long long number) {
    return std::to_chars(out, out + kNumberRoom, number).ptr;
}

inline bool needsEscape(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\' || c == '/';
}

inline char* putEscaped(char* out, char c) {
    constexpr std::string_view kNamed = "\"\\/\b\f\n\r\t";
    constexpr std::string_view kLetters = "\"\\/bfnrt";
    *out++ = '\\';
    const std::size_t named = kNamed.find(c);
    if (named != std::string_view::npos) {
        *out++ = kLetters[named];
        return out;
    }
    constexpr std::string_view kHex = "0123456789abcdef";
    out = put(out, "u00");
    *out++ = kHex[static_cast<unsigned char>(c) >> 4U];
    *out++ = kHex[static_cast<unsigned char>(c) & 0xFU];
    return out;
}

inline char* putQuoted(char* out, std::string_view text) {
    const char* at = text.data();
    const char* end = at + text.size();
    *out++ = '"';
#ifdef __SSE2__
    while (end - at >= 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const __m128i named = _mm_or_si128(
            _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('"')), _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\\'))),
            _mm_cmpeq_epi8(bytes, _mm_set1_epi8('/')));
        const __m128i control = _mm_cmpeq_epi8(_mm_min_epu8(bytes, _mm_set1_epi8(0x1F)), bytes);
        const auto found = static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(named, control)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes);
        const int plain = found == 0 ? 16 : __builtin_ctz(found);
        at += plain;
        out += plain;
        if (found != 0) out = putEscaped(out, *at++);
    }
#endif
    for (; at != end; ++at) {
        if (needsEscape(*at)) {
            out = putEscaped(out, *at);
        } else {
            *out++ = *at;
        }
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

/// Appends the message object of the row that a "select *" of a message table stands on.
inline void appendMessage(Output& output, sqlite3_stmt* row) {
    const std::string_view body = textOf(row, 2);
    const std::string_view properties = textOf(row, 10);
    const std::string_view limitRange = textOf(row, 14);
    const std::string_view format = textOf(row, 15);
    const std::string_view relatedUsers = textOf(row, 19);
    const std::string_view source = textOf(row, 20);
    constexpr std::size_t kKeysAndNumbers = 512;
    char* out =
        output.reserve(kKeysAndNumbers + quotedRoom(body.size()) + quotedRoom(properties.size()) +
                       quotedRoom(format.size()) + quotedRoom(source.size()) + limitRange.size() + relatedUsers.size());
    const auto number = [row](char* to, int column) { return putNumber(to, sqlite3_column_int64(row, column)); };
    out = number(put(out, "{\"sendUserID\":"), 1);
    out = number(put(out, ",\"receTargetID\":"), 0);
    out = number(put(out, ",\"sendTime\":"), 6);
    out = putQuoted(put(out, ",\"message\":"), body);
    out = number(put(out, ",\"messageType\":"), 3);
    out = number(put(out, ",\"messageID\":"), 4);
    out = putQuoted(put(out, ",\"format\":"), format);
    out = number(put(out, ",\"lastMessageID\":"), 5);
    out = putQuoted(put(out, ",\"msgProperties\":"), properties);
    out = number(put(out, ",\"activeType\":"), 16);
    out = number(put(out, ",\"relatedMsgID\":"), 17);
    out = number(put(out, ",\"securityLevel\":"), 22);
    out = putQuoted(put(out, ",\"sourceID\":"), source);
    out = number(put(out, ",\"senderSessionID\":"), 9);
    out = putList(put(out, ",\"#limitRange\":"), limitRange);
    out = putList(put(out, ",\"#relatedUsers\":"), relatedUsers);
    *out++ = '}';
    output.take(out);
}

}  // namespace bench
