// What a number of a JSON text is worth.
#pragma once

namespace tools {

/// A number as the library's accessors give it.
struct JsonNumber {
    double value = 0;
    long long exact = 0;  ///< json_object_get_int64()'s value
};

namespace detail {

/// Reads the number at `text` into `number`, whatever the locale of the process, and gives the end of its literal; null
/// when the library refuses it. The bytes up to `known` can be read in any case, which makes long numbers cheaper.
[[nodiscard]] const char* readJsonNumber(const char* text, const char* known, JsonNumber& number);

}  // namespace detail
}  // namespace tools
