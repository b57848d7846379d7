#include "host/json_numbers.h"

#include <clocale>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <locale.h>  // NOLINT(modernize-deprecated-headers): newlocale is POSIX, <clocale> does not promise it
#ifdef __APPLE__
#include <xlocale.h>
#endif

namespace {

// In front of every block; as wide as the strictest alignment, so that the block behind it stays aligned.
struct alignas(std::max_align_t) BlockHeader {
    long long exact;
    bool hasExact;
};

struct PendingLiteral {
    long long exact = 0;
    bool set = false;
};
thread_local PendingLiteral pendingLiteral;

struct Source {
    void* (*allocate)(std::size_t) = std::malloc;
    void (*release)(void*) = std::free;
};
Source source;

BlockHeader* headerOf(void* block) {
    return static_cast<BlockHeader*>(block) - 1;
}
const BlockHeader* headerOf(const void* block) {
    return static_cast<const BlockHeader*>(block) - 1;
}

locale_t plainLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return locale;
}

struct IntegerLiteral {
    std::uint64_t magnitude = 0;
    bool negative = false;
    int digits = 0;
    const char* end = nullptr;  // null: not a plain integer literal of up to 19 digits
};

bool continuesNumber(char c) {
    return c == '.' || c == 'e' || c == 'E' || c == 'x' || c == 'X';
}

// Longer ones go to strtod: they are outside 64 bits, or have leading zeros, which the library refuses.
IntegerLiteral integerLiteralAt(const char* text) {
    constexpr int kMostDigits = 19;
    IntegerLiteral literal;
    literal.negative = *text == '-';
    const char* digit = literal.negative ? text + 1 : text;
    for (; *digit >= '0' && *digit <= '9'; ++digit) {
        if (++literal.digits > kMostDigits) return literal;
        literal.magnitude = literal.magnitude * 10 + static_cast<unsigned>(*digit - '0');
    }
    if (literal.digits > 0 && !continuesNumber(*digit)) literal.end = digit;
    return literal;
}

bool hasLeadingZero(const char* text, const IntegerLiteral& literal) {
    return literal.digits > 1 && text[literal.negative ? 1 : 0] == '0';
}

// Not every literal of 19 digits fits: 9223372036854775808 is one too many, its negative is the minimum.
bool fits64Bits(const IntegerLiteral& literal) {
    return literal.magnitude <= static_cast<std::uint64_t>(INT64_MAX) + (literal.negative ? 1 : 0);
}

void remember(const IntegerLiteral& literal) {
    const std::uint64_t bits = literal.negative ? 0 - literal.magnitude : literal.magnitude;
    pendingLiteral = {static_cast<long long>(bits), true};
}

}  // namespace

double chatTransferJsonToDouble(const char* text, char** end) {
    constexpr std::uint64_t kExactInDouble = std::uint64_t{1} << 53;
    pendingLiteral.set = false;
    const IntegerLiteral literal = integerLiteralAt(text);
    if (literal.end == nullptr || hasLeadingZero(text, literal)) return strtod_l(text, end, plainLocale());
    // The conversion from 64 bits rounds to nearest as strtod does.
    const auto magnitude = static_cast<double>(literal.magnitude);
    if (literal.magnitude > kExactInDouble && fits64Bits(literal)) remember(literal);
    *end = const_cast<char*>(literal.end);  // NOLINT(cppcoreguidelines-pro-type-const-cast): strtod's own signature
    return literal.negative ? -magnitude : magnitude;
}

void* chatTransferJsonAllocate(size_t size) {
    const PendingLiteral literal = pendingLiteral;
    pendingLiteral.set = false;
    if (size > SIZE_MAX - sizeof(BlockHeader)) return nullptr;
    auto* header = static_cast<BlockHeader*>(source.allocate(sizeof(BlockHeader) + size));
    if (header == nullptr) return nullptr;
    header->exact = literal.exact;
    header->hasExact = literal.set;
    return header + 1;
}

void chatTransferJsonRelease(void* block) {
    if (block != nullptr) source.release(headerOf(block));
}

void chatTransferJsonSetSource(void* (*allocate)(size_t), void (*release)(void*)) {
    source.allocate = allocate != nullptr ? allocate : std::malloc;
    source.release = release != nullptr ? release : std::free;
}

int chatTransferJsonExactValue(const void* block, long long* exact) {
    const BlockHeader* header = headerOf(block);
    if (header->hasExact) *exact = header->exact;
    return header->hasExact ? 1 : 0;
}

void chatTransferJsonCopyExactValue(const void* from, void* to) {
    headerOf(to)->exact = headerOf(from)->exact;
    headerOf(to)->hasExact = headerOf(from)->hasExact;
}
