// The parent's own use of its own parson, in the same program as the component's private copy.
#include <parson.h>

namespace {

bool parsesByItself() {
    JSON_Value* value = json_parse_string("[1, 2]");
    const size_t count = json_array_get_count(json_value_get_array(value));
    json_value_free(value);
    return count == 2;
}

// Runs before main: a clash of the two copies would show here.
[[maybe_unused]] const bool works = parsesByItself();

}  // namespace
