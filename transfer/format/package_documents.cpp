#include "transfer/format/package_documents.h"

#include "transfer/format/json_fields.h"
#include "transfer/format/package_format.h"

namespace chattransfer {

using tools::JsonDocument;

// A member for which there is no memory is left out: these documents are handed to a host, which gets what there is.

JsonDocument makeFileHead(const std::string& version) {
    JsonDocument file(json_value_init_object());
    JSON_Object* object = json_value_get_object(file.get());
    static_cast<void>(setField(object, kVersionKey, version));
    setValue(object, kMessagesKey, JsonDocument(json_value_init_array()));
    return file;
}

JsonDocument makeMessageList() {
    JsonDocument list(json_value_init_object());
    setValue(json_value_get_object(list.get()), kMessagesKey, JsonDocument(json_value_init_array()));
    return list;
}

JsonDocument makeMessage(const imsdk::st_dbMessageBean& record) {
    JsonDocument message(json_value_init_object());
    JSON_Object* object = json_value_get_object(message.get());
    forEachMessageKey(record, [object](const char* key, KeyUse /*use*/, const auto& field) {
        static_cast<void>(setField(object, key, field));
    });
    forEachMessageList(record, [object](const char* key, const std::string& joined) { setList(object, key, joined); });
    return message;
}

}  // namespace chattransfer
