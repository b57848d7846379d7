#include "host/json_literal.h"

#include <locale.h>  // NOLINT(modernize-deprecated-headers): newlocale is POSIX, <clocale> does not promise it

#include <cstdint>
#include <cstdlib>
#ifdef __APPLE__
#include <xlocale.h>
#endif

namespace tools::detail {
namespace {

locale_t plainLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return locale;
}

struct Digits {
    std::uint64_t magnitude = 0;
    bool negative = false;
    int count = 0;
    const char* end = nullptr;
};

constexpr int kMostDigits = 19;

// Reads a sign and up to one digit more than an integer of 64 bits can have.
Digits digitsAt(const char* text) {
    Digits digits;
    digits.negative = *text == '-';
    digits.end = digits.negative ? text + 1 : text;
    for (; *digits.end >= '0' && *digits.end <= '9' && digits.count <= kMostDigits; ++digits.end) {
        digits.magnitude = digits.magnitude * 10 + static_cast<unsigned>(*digits.end - '0');
        ++digits.count;
    }
    return digits;
}

bool continuesNumber(char c) {
    return c == '.' || c == 'e' || c == 'E' || c == 'x' || c == 'X';
}

// What is not plain goes to strtod: fractions and exponents, literals outside 64 bits, and leading zeros.
bool isPlainInteger(const char* text, const Digits& digits) {
    const bool leadingZero = digits.count > 1 && text[digits.negative ? 1 : 0] == '0';
    return digits.count > 0 && digits.count <= kMostDigits && !leadingZero && !continuesNumber(*digits.end);
}

// Not every literal of 19 digits fits: 9223372036854775808 is one too many, its negative is the minimum.
bool fits64Bits(const Digits& digits) {
    return digits.magnitude <= static_cast<std::uint64_t>(INT64_MAX) + (digits.negative ? 1 : 0);
}

JsonLiteral readByLibrary(const char* text) {
    char* end = nullptr;
    JsonLiteral literal;
    literal.value = strtod_l(text, &end, plainLocale());
    literal.end = end;
    return literal;
}

}  // namespace

JsonLiteral readJsonLiteral(const char* text) {
    constexpr std::uint64_t kExactInDouble = std::uint64_t{1} << 53;
    const Digits digits = digitsAt(text);
    if (!isPlainInteger(text, digits)) return readByLibrary(text);
    // The conversion from 64 bits rounds to nearest, as strtod does.
    const auto magnitude = static_cast<double>(digits.magnitude);
    JsonLiteral literal;
    literal.value = digits.negative ? -magnitude : magnitude;
    literal.end = digits.end;
    literal.plainInteger = true;
    literal.hasExact = digits.magnitude > kExactInDouble && fits64Bits(digits);
    if (literal.hasExact)
        literal.exact = static_cast<long long>(digits.negative ? 0 - digits.magnitude : digits.magnitude);
    return literal;
}

}  // namespace tools::detail
