#include "host/json/json_tree.h"

#include <new>
#include <vector>

#include "host/json/json_reader.h"
#include "host/json/json_stock.h"

namespace tools {
namespace {

class TreeReader {
public:
    explicit TreeReader(std::string& text) : reader_(text) {}

    JsonDocument read() {
        JsonDocument root = readValue();
        if (root) descend(root.get());
        while (!open_.empty() && readItem()) {
        }
        return reader_.ok() && open_.empty() ? std::move(root) : nullptr;
    }

private:
    // An object or array whose items are being read.
    struct Level {
        JSON_Value* value;
        JsonNames names;
    };

    // A new value of the library, which gives none without memory.
    static JsonDocument made(JSON_Value* value) {
        if (value == nullptr) throw std::bad_alloc();
        return JsonDocument(value);
    }

    // The value that stands next, objects and arrays without their items; null for what is no value.
    JsonDocument readValue() {
        if (reader_.atObject()) return made(json_value_init_object());
        if (reader_.atArray()) return made(json_value_init_array());
        if (reader_.atString()) return readText();
        if (reader_.atNumber()) return readNumber();
        if (reader_.readWord("true")) return made(json_value_init_boolean(1));
        if (reader_.readWord("false")) return made(json_value_init_boolean(0));
        if (reader_.readWord("null")) return made(json_value_init_null());
        reader_.reject();
        return nullptr;
    }

    JsonDocument readText() {
        const std::string_view text = reader_.readString();
        return reader_.ok() ? made(chat_transfer_text_value(text.data(), text.size())) : nullptr;
    }

    JsonDocument readNumber() {
        const JsonNumber number = reader_.readNumber();
        if (!reader_.ok()) return nullptr;
        JsonDocument value = made(json_value_init_number(number.value));
        chat_transfer_set_exact_integer(value.get(), number.exact);
        return value;
    }

    // Enters `value` if it is an object or an array.
    void descend(JSON_Value* value) {
        const JSON_Value_Type type = json_value_get_type(value);
        if (type != JSONObject && type != JSONArray) return;
        open_.push_back({value, {}});
        reader_.enter();
    }

    // Reads one item of the innermost object or array, or its end. False when the text is invalid.
    bool readItem() {
        Level& level = open_.back();
        const bool inObject = json_value_get_type(level.value) == JSONObject;
        std::string_view name;
        if (!(inObject ? reader_.nextMember(name) : reader_.nextElement())) {
            open_.pop_back();
            return reader_.ok();
        }
        if (inObject && !level.names.add(name)) return false;
        JsonDocument value = readValue();
        if (!value) return false;
        const bool added = inObject
                               ? chat_transfer_add_member(level.value, name.data(), name.size(), value.get()) != 0
                               : json_array_append_value(json_value_get_array(level.value), value.get()) == JSONSuccess;
        if (!added) throw std::bad_alloc();
        descend(value.release());
        return true;
    }

    JsonReader reader_;
    std::vector<Level> open_;
};

}  // namespace

JsonDocument readJsonTree(std::string& text) {
    return TreeReader(text).read();
}

}  // namespace tools
