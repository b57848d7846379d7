// Serialisation in one pass over the tree. The stock serializer walks it three times (size, size again, write), prints
// every number on each walk and looks every member up by name again.
#include <atomic>
#include <cstring>
#include <new>
#include <string>

#include "host/files/whole_file.h"
#include "host/json/json_stock.h"
#include "host/json/json_text.h"

namespace {

std::atomic<bool> escapeSlashes{true};

class TreeWriter {
public:
    explicit TreeWriter(bool pretty) : pretty_(pretty), slashes_(escapeSlashes) {}

    // False when the tree holds something that is no JSON value.
    bool write(const JSON_Value* value, int level = 0) {
        switch (json_value_get_type(value)) {
            case JSONNull:
                out_ += "null";
                return true;
            case JSONBoolean:
                out_ += json_value_get_boolean(value) != 0 ? "true" : "false";
                return true;
            case JSONNumber:
                tools::appendJsonNumber(out_, json_value_get_number(value));
                return true;
            case JSONString:
                writeString(json_value_get_string(value), json_value_get_string_len(value));
                return true;
            case JSONArray:
                return writeArray(json_value_get_array(value), level);
            case JSONObject:
                return writeObject(json_value_get_object(value), level);
            default:
                return false;
        }
    }

    std::string text() const { return std::string(out_.text()); }

private:
    bool writeArray(const JSON_Array* array, int level) {
        const size_t count = json_array_get_count(array);
        out_ += '[';
        for (size_t i = 0; i < count; ++i) {
            beginItem(i, level);
            if (!write(json_array_get_value(array, i), level + 1)) return false;
        }
        endItems(count, level);
        out_ += ']';
        return true;
    }

    bool writeObject(const JSON_Object* object, int level) {
        const size_t count = json_object_get_count(object);
        out_ += '{';
        for (size_t i = 0; i < count; ++i) {
            const char* name = json_object_get_name(object, i);
            beginItem(i, level);
            writeString(name, std::strlen(name));
            out_ += pretty_ ? ": " : ":";
            if (!write(json_object_get_value_at(object, i), level + 1)) return false;
        }
        endItems(count, level);
        out_ += '}';
        return true;
    }

    void writeString(const char* text, size_t length) { tools::appendJsonString(out_, {text, length}, slashes_); }

    void beginItem(size_t index, int level) {
        if (index > 0) out_ += ',';
        if (pretty_) newLine(level + 1);
    }

    void endItems(size_t count, int level) {
        if (pretty_ && count > 0) newLine(level);
    }

    void newLine(int level) {
        out_ += '\n';
        out_ += std::string(static_cast<size_t>(level) * 4, ' ');
    }

    tools::TextBuffer out_;
    bool pretty_;
    bool slashes_;
};

// False when the value cannot be written; callers of a C library expect that also when memory runs out.
bool textOf(const JSON_Value* value, bool pretty, std::string& text) try {
    TreeWriter writer(pretty);
    if (!writer.write(value)) return false;
    text = writer.text();
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

size_t sizeOf(const JSON_Value* value, bool pretty) {
    std::string text;
    return textOf(value, pretty, text) ? text.size() + 1 : 0;
}

JSON_Status toBuffer(const JSON_Value* value, bool pretty, char* buffer, size_t size) {
    std::string text;
    if (!textOf(value, pretty, text) || text.size() >= size) return JSONFailure;
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return JSONSuccess;
}

char* toString(const JSON_Value* value, bool pretty) {
    std::string text;
    return textOf(value, pretty, text) ? chat_transfer_copy_text(text.data(), text.size()) : nullptr;
}

JSON_Status toFile(const JSON_Value* value, bool pretty, const char* filename) try {
    std::string text;
    if (filename == nullptr || !textOf(value, pretty, text)) return JSONFailure;
    return tools::writeWholeFile(filename, text) ? JSONSuccess : JSONFailure;
} catch (const std::bad_alloc&) {
    return JSONFailure;
}

}  // namespace

extern "C" {

void json_set_escape_slashes(int escape) {
    escapeSlashes = escape != 0;
}

size_t json_serialization_size(const JSON_Value* value) {
    return sizeOf(value, false);
}
size_t json_serialization_size_pretty(const JSON_Value* value) {
    return sizeOf(value, true);
}

JSON_Status json_serialize_to_buffer(const JSON_Value* value, char* buf, size_t buf_size_in_bytes) {
    return toBuffer(value, false, buf, buf_size_in_bytes);
}
JSON_Status json_serialize_to_buffer_pretty(const JSON_Value* value, char* buf, size_t buf_size_in_bytes) {
    return toBuffer(value, true, buf, buf_size_in_bytes);
}

JSON_Status json_serialize_to_file(const JSON_Value* value, const char* filename) {
    return toFile(value, false, filename);
}
JSON_Status json_serialize_to_file_pretty(const JSON_Value* value, const char* filename) {
    return toFile(value, true, filename);
}

char* json_serialize_to_string(const JSON_Value* value) {
    return toString(value, false);
}
char* json_serialize_to_string_pretty(const JSON_Value* value) {
    return toString(value, true);
}
}
