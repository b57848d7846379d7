#include "host/json_tree.h"

#include <vector>

#include "host/json_numbers.h"
#include "host/json_reader.h"
#include "host/json_stock.h"

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

    // The value that stands next, objects and arrays without their items; null for what is no value, and without
    // memory.
    JsonDocument readValue() {
        if (reader_.atObject()) return JsonDocument(json_value_init_object());
        if (reader_.atArray()) return JsonDocument(json_value_init_array());
        if (reader_.atString()) return readText();
        if (reader_.atNumber()) return readNumber();
        if (reader_.readWord("true")) return JsonDocument(json_value_init_boolean(1));
        if (reader_.readWord("false")) return JsonDocument(json_value_init_boolean(0));
        if (reader_.readWord("null")) return JsonDocument(json_value_init_null());
        reader_.reject();
        return nullptr;
    }

    JsonDocument readText() {
        const std::string_view text = reader_.readString();
        return JsonDocument(reader_.ok() ? chat_transfer_stock_text(text.data(), text.size()) : nullptr);
    }

    JsonDocument readNumber() {
        const JsonNumber number = reader_.readNumber();
        JsonDocument value(reader_.ok() ? json_value_init_number(number.value) : nullptr);
        if (value) chatTransferJsonSetExactValue(value.get(), number.exact);
        return value;
    }

    // Enters `value` if it is an object or an array.
    void descend(JSON_Value* value) {
        const JSON_Value_Type type = json_value_get_type(value);
        if (type != JSONObject && type != JSONArray) return;
        open_.push_back({value, {}});
        reader_.enter();
    }

    // Reads one item of the innermost object or array, or its end. False when the text is invalid or memory runs out.
    bool readItem() {
        const bool inObject = json_value_get_type(open_.back().value) == JSONObject;
        std::string_view name;
        if (!(inObject ? reader_.nextMember(name) : reader_.nextElement())) {
            open_.pop_back();
            return reader_.ok();
        }
        if (inObject && !open_.back().names.add(name)) return false;
        JsonDocument value = readValue();
        if (!value) return false;
        JSON_Value* item = value.get();
        if (!(inObject ? addMember(name, value) : addElement(value))) return false;
        descend(item);
        return true;
    }

    bool addMember(std::string_view name, JsonDocument& value) {
        const bool added =
            chat_transfer_stock_add_member(open_.back().value, name.data(), name.size(), value.get()) != 0;
        if (added) static_cast<void>(value.release());
        return added;
    }

    bool addElement(JsonDocument& value) {
        const bool added =
            json_array_append_value(json_value_get_array(open_.back().value), value.get()) == JSONSuccess;
        if (added) static_cast<void>(value.release());
        return added;
    }

    JsonReader reader_;
    std::vector<Level> open_;
};

}  // namespace

JsonDocument readJsonTree(std::string& text) {
    return TreeReader(text).read();
}

}  // namespace tools
