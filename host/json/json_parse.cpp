// Parsing: into trees by the reader of this component; files only when they are regular, so that a FIFO under the name
// of a message file cannot hang the import.
#include <fcntl.h>

#include <new>
#include <string>

#include "host/files/file_handle.h"
#include "host/json.h"
#include "host/json/json_numbers.h"
#include "host/json/json_stock.h"
#include "host/json/json_tree.h"

namespace {

using Parse = JSON_Value* (*)(std::string&);
enum class Links { follow, refuse };

// Callers of a C library expect null when memory runs out, not an exception.
JSON_Value* parseFile(const char* filename, Links links, Parse parse) try {
    if (filename == nullptr) return nullptr;
    const tools::detail::FileHandle file = tools::detail::openRegularFile(AT_FDCWD, filename, links == Links::follow);
    std::string text;
    if (!file.valid() || !tools::detail::readAll(file.get(), text)) return nullptr;
    return parse(text);
} catch (const std::bad_alloc&) {
    return nullptr;
}

JSON_Value* parseTree(std::string& text) {
    return tools::readJsonTree(text).release();
}

JSON_Value* parseWithComments(std::string& text) {
    return json_parse_string_with_comments(text.c_str());
}

}  // namespace

extern "C" {

JSON_Value* json_parse_string(const char* string) try {
    if (string == nullptr) return nullptr;
    std::string text = string;
    return parseTree(text);
} catch (const std::bad_alloc&) {
    return nullptr;
}

JSON_Value* json_parse_string_with_comments(const char* string) {
    if (string == nullptr) return nullptr;
    chatTransferJsonBeginParse();
    JSON_Value* value = chat_transfer_stock_parse_string_with_comments(string);
    chatTransferJsonEndParse(value != nullptr ? 1 : 0);
    return value;
}

JSON_Value* json_parse_file(const char* filename) {
    return parseFile(filename, Links::follow, parseTree);
}

JSON_Value* json_parse_file_with_comments(const char* filename) {
    return parseFile(filename, Links::follow, parseWithComments);
}

JSON_Value* json_parse_file_no_link(const char* filename) {
    return parseFile(filename, Links::refuse, parseTree);
}
}
