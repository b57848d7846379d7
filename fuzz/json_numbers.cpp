// The exact integers of the JSON functions, held against another JSON library: whatever both take, they see the same
// integers in it, and our own writer's text gives them back.
#include <limits>
#include <nlohmann/json.hpp>

#include "fuzz/property.h"
#include "host/json/json_owner.h"

namespace {

using fuzz::require;
using Other = nlohmann::json;

constexpr int kDeepest = 100;

// What our accessors promise for the other library's number; numbers with a fraction or outside 64 bits are left out.
bool isExactInteger(const Other& number) {
    constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<long long>::max());
    return number.is_number_unsigned() ? number.get<std::uint64_t>() <= kMost : number.is_number_integer();
}

void compare(const JSON_Value* ours, const Other& other, int depth);

void compareObjects(const JSON_Object* ours, const Other& other, int depth) {
    require(json_object_get_count(ours) == other.size(), "an object has its members");
    for (const auto& [name, value] : other.items()) {
        if (name.find('\0') != std::string::npos) continue;
        if (isExactInteger(value))
            require(json_object_get_int64(ours, name.c_str()) == value.get<long long>(), "a member is exact");
        // Dots are part of a name here, unlike in the dotted accessors.
        compare(json_object_get_value(ours, name.c_str()), value, depth + 1);
    }
}

void compareArrays(const JSON_Array* ours, const Other& other, int depth) {
    require(json_array_get_count(ours) == other.size(), "an array has its elements");
    for (std::size_t i = 0; i < other.size(); ++i) {
        if (isExactInteger(other[i]))
            require(json_array_get_int64(ours, i) == other[i].get<long long>(), "an element is exact");
        compare(json_array_get_value(ours, i), other[i], depth + 1);
    }
}

void compare(const JSON_Value* ours, const Other& other, int depth) {
    require(ours != nullptr, "a value that is there is found");
    if (depth > kDeepest) return;
    if (other.is_object()) {
        compareObjects(json_value_get_object(ours), other, depth);
    } else if (other.is_array()) {
        compareArrays(json_value_get_array(ours), other, depth);
    } else if (other.is_boolean()) {
        require(json_value_get_boolean(ours) == (other.get<bool>() ? 1 : 0), "a truth value is the same");
    } else {
        require((json_value_get_type(ours) == JSONNull) == other.is_null(), "null is the same");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const tools::JsonDocument ours(json_parse_string(text.c_str()));
    const Other other = Other::parse(text, nullptr, false);
    // The libraries take different texts (trailing text, duplicate names): only what both take can be compared.
    if (ours && !other.is_discarded()) compare(ours.get(), other, 0);
    return 0;
}
