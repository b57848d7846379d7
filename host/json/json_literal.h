// Inside of the JSON services: what a number literal is worth.
#pragma once

namespace tools::detail {

struct JsonLiteral {
    double value = 0;
    const char* end = nullptr;  ///< behind the literal; its begin when there is no number
    bool plainInteger = false;  ///< an integer of up to 19 digits without leading zero
    long long exact = 0;        ///< the integer; for other numbers truncated toward zero, or the nearest limit
};

/// Reads the number at `text` as strtod does in the C locale, whatever the locale of the process. A literal that strtod
/// finds out of range leaves ERANGE in errno, others that are no plain integers 0. The bytes up to `known` can be read
/// in any case, which makes long numbers cheaper; `text` itself promises nothing.
JsonLiteral readJsonLiteral(const char* text, const char* known);

}  // namespace tools::detail
