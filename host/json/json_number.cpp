#include "host/json/json_number.h"

#include <locale.h>  // NOLINT(modernize-deprecated-headers): newlocale is POSIX, <clocale> does not promise it

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#ifdef __APPLE__
#include <xlocale.h>
#endif

#include "host/base/numeric.h"
#include "host/json/byte_lanes.h"

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

bool allDigits(std::uint64_t lanes) {
    // Only "0" to "9" have a high half of 3 both as they are and with 6 added.
    constexpr std::uint64_t kHighHalves = eachByte(0xF0);
    return (lanes & kHighHalves) == eachByte(0x30) && ((lanes + eachByte(6)) & kHighHalves) == eachByte(0x30);
}

// The number that eight digits spell: neighbours are joined to pairs, pairs to fours, fours to all.
std::uint64_t numberOf(std::uint64_t digits) {
    digits = (digits & eachByte(0x0F)) * (1U + (10U << 8U)) >> 8U;
    digits = (digits & 0x00FF00FF00FF00FFU) * (1U + (100U << 16U)) >> 16U;
    return (digits & 0x0000FFFF0000FFFFU) * (1U + (std::uint64_t{10000} << 32U)) >> 32U;
}

// Reads a sign and up to one digit more than an integer of 64 bits can have.
Digits digitsAt(const char* text, const char* known) {
    constexpr std::uint64_t kEightDigits = 100000000;
    Digits digits;
    digits.negative = *text == '-';
    digits.end = digits.negative ? text + 1 : text;
    // Ids have sixteen digits, times thirteen.
    while (digits.count <= kMostDigits - 8 && known - digits.end >= 8) {
        const std::uint64_t lanes = lanesAt(digits.end);
        if (!allDigits(lanes)) break;
        digits.magnitude = digits.magnitude * kEightDigits + numberOf(lanes);
        digits.count += 8;
        digits.end += 8;
    }
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

// The spellings of numbers that strtod takes and the library then refuses. A "-" before something else is none of them:
// the library reads nothing there, takes it for a 0, and stumbles over the "-" next unless it stands at the root.
bool isRefused(std::string_view literal) {
    if (literal.size() > 1 && literal[0] == '0' && literal[1] != '.') return true;
    if (literal.size() > 2 && literal.substr(0, 2) == "-0" && literal[2] != '.') return true;
    return literal.find_first_of("xX") != std::string_view::npos;
}

const char* readByStrtod(const char* text, JsonNumber& number) {
    char* end = nullptr;
    errno = 0;
    number.value = strtod_l(text, &end, plainLocale());
    number.exact = truncateTo<long long>(number.value);
    const std::string_view literal(text, static_cast<std::size_t>(end - text));
    return errno == 0 && std::isfinite(number.value) && !isRefused(literal) ? end : nullptr;
}

}  // namespace

const char* readJsonNumber(const char* text, const char* known, JsonNumber& number) {
    const Digits digits = digitsAt(text, known);
    if (!isPlainInteger(text, digits)) return readByStrtod(text, number);
    // The conversion from 64 bits rounds to nearest, as strtod does.
    const auto magnitude = static_cast<double>(digits.magnitude);
    number.value = digits.negative ? -magnitude : magnitude;
    number.exact = fits64Bits(digits)
                       ? static_cast<long long>(digits.negative ? 0 - digits.magnitude : digits.magnitude)
                       : truncateTo<long long>(number.value);
    return digits.end;
}

}  // namespace tools::detail
