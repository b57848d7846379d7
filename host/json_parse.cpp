// Parsing: texts without a leak when they are refused; files only when they are regular, so that a FIFO under the name
// of a message file cannot hang the import.
#include <fcntl.h>

#include <new>
#include <string>

#include "host/file_handle.h"
#include "host/json.h"
#include "host/json_numbers.h"
#include "host/json_stock.h"

namespace {

using Parse = JSON_Value* (*)(const char*);
enum class Links { follow, refuse };

JSON_Value* parseFile(const char* filename, Links links, Parse parse) {
    if (filename == nullptr) return nullptr;
    const tools::detail::FileHandle file = tools::detail::openRegularFile(AT_FDCWD, filename, links == Links::follow);
    std::string text;
    if (!file.valid() || !tools::detail::readAll(file.get(), text)) return nullptr;
    return parse(text.c_str());
}

// Callers of a C library expect null when memory runs out, not an exception.
JSON_Value* parseFileOrNull(const char* filename, Links links, Parse parse) try {
    return parseFile(filename, links, parse);
} catch (const std::bad_alloc&) {
    return nullptr;
}

// Parses with everything freed again when the text is refused.
JSON_Value* parseCleanly(const char* string, Parse parse) {
    chatTransferJsonBeginParse();
    JSON_Value* value = parse(string);
    chatTransferJsonEndParse(value != nullptr ? 1 : 0);
    return value;
}

}  // namespace

extern "C" {

JSON_Value* json_parse_string(const char* string) {
    return parseCleanly(string, chat_transfer_stock_parse_string);
}

JSON_Value* json_parse_string_with_comments(const char* string) {
    return string != nullptr ? parseCleanly(string, chat_transfer_stock_parse_string_with_comments) : nullptr;
}

JSON_Value* json_parse_file(const char* filename) {
    return parseFileOrNull(filename, Links::follow, json_parse_string);
}

JSON_Value* json_parse_file_with_comments(const char* filename) {
    return parseFileOrNull(filename, Links::follow, json_parse_string_with_comments);
}

JSON_Value* json_parse_file_no_link(const char* filename) {
    return parseFileOrNull(filename, Links::refuse, json_parse_string);
}
}
