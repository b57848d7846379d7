// Parsing: into trees by the reader of this component; files only when they are regular, so that a FIFO under the name
// of a message file cannot hang the import.
#include <fcntl.h>

#include <new>
#include <string>

#include "host/files/file_handle.h"
#include "host/json/json_stock.h"
#include "host/json/json_tree.h"

namespace {

enum class Links { follow, refuse };
enum class Comments { refuse, remove };

JSON_Value* parse(std::string& text, Comments comments) {
    if (comments == Comments::remove) {
        // Where the library takes comments, it takes no byte-order mark.
        if (text.compare(0, 3, "\xEF\xBB\xBF") == 0) return nullptr;
        chat_transfer_remove_comments(text.data());
    }
    return tools::readJsonTree(text).release();
}

// Callers of a C library expect null when memory runs out, not an exception.
JSON_Value* parseString(const char* string, Comments comments) try {
    if (string == nullptr) return nullptr;
    std::string text = string;
    return parse(text, comments);
} catch (const std::bad_alloc&) {
    return nullptr;
}

JSON_Value* parseFile(const char* filename, Links links, Comments comments) try {
    if (filename == nullptr) return nullptr;
    const tools::detail::FileHandle file = tools::detail::openRegularFile(AT_FDCWD, filename, links == Links::follow);
    std::string text;
    if (!file.valid() || !tools::detail::readAll(file.get(), text)) return nullptr;
    return parse(text, comments);
} catch (const std::bad_alloc&) {
    return nullptr;
}

}  // namespace

extern "C" {

JSON_Value* json_parse_string(const char* string) {
    return parseString(string, Comments::refuse);
}

JSON_Value* json_parse_string_with_comments(const char* string) {
    return parseString(string, Comments::remove);
}

JSON_Value* json_parse_file(const char* filename) {
    return parseFile(filename, Links::follow, Comments::refuse);
}

JSON_Value* json_parse_file_with_comments(const char* filename) {
    return parseFile(filename, Links::follow, Comments::remove);
}

JSON_Value* json_parse_file_no_link(const char* filename) {
    return parseFile(filename, Links::refuse, Comments::refuse);
}
}
