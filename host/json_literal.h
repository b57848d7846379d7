// Inside of the JSON services: what a number literal is worth.
#pragma once

namespace tools::detail {

struct JsonLiteral {
    double value = 0;
    const char* end = nullptr;  ///< behind the literal; its begin when there is no number
    bool plainInteger = false;  ///< an integer of up to 19 digits without leading zero
    bool hasExact = false;      ///< it fits 64 bits but not a double
    long long exact = 0;
};

/// Reads the number at `text` as strtod does in the C locale, whatever the locale of the process. A literal that strtod
/// finds out of range leaves ERANGE in errno.
JsonLiteral readJsonLiteral(const char* text);

}  // namespace tools::detail
