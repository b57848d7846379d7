#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>
#include <system_error>

#include "host/tools.h"

namespace tools {
namespace {

bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// The leading number of [first, last): false when there is none. Same reading as strtoll in base 10, bounded by `last`.
bool leadingNumber(const char* first, const char* last, long long& number) {
    while (first != last && isBlank(*first))
        ++first;
    const bool negative = first != last && *first == '-';
    // from_chars takes a minus but no plus.
    if (first != last && *first == '+' && last - first > 1 && first[1] != '-') ++first;
    const std::from_chars_result result = std::from_chars(first, last, number);
    if (result.ec == std::errc::result_out_of_range) {
        number = negative ? std::numeric_limits<long long>::min() : std::numeric_limits<long long>::max();
        return true;
    }
    return result.ec == std::errc();
}

std::string_view lastComponent(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

}  // namespace

void getNameFromPath(char* path, char* name) {
    const std::string_view component = lastComponent(path);
    std::memmove(name, component.data(), component.size() + 1);
}

void getNameFromPath(const std::string& path, std::string& name) {
    name = std::string(lastComponent(path));
}

std::string int64_To_String(const std::vector<long long>& numbers, const char* separator) {
    std::string text;
    for (const long long number : numbers) {
        if (!text.empty() && separator != nullptr) text += separator;
        text += std::to_string(number);
    }
    return text;
}

std::vector<long long> string_To_Vec_Int64(const std::string& text, const char* separator) {
    const std::size_t step = separator != nullptr ? std::strlen(separator) : 0;
    std::vector<long long> numbers;
    std::size_t begin = 0;
    while (begin <= text.size()) {
        const std::size_t found = step != 0 ? text.find(separator, begin) : std::string::npos;
        const std::size_t end = std::min(found, text.size());
        long long number = 0;
        if (leadingNumber(text.data() + begin, text.data() + end, number)) numbers.push_back(number);
        if (found == std::string::npos) break;
        begin = end + step;
    }
    return numbers;
}

long long atoint64(const char* digits) {
    long long number = 0;
    if (digits != nullptr) leadingNumber(digits, digits + std::strlen(digits), number);
    return number;
}

}  // namespace tools
