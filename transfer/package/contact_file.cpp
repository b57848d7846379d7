#include "transfer/package/contact_file.h"

#include <utility>

#include "host/json/json_owner.h"
#include "host/tools.h"
#include "transfer/format/json_fields.h"
#include "transfer/format/package_format.h"
#include "transfer/tables/recent_contact_table.h"

namespace chattransfer {
namespace {

using imsdk::st_dbReContactBean;
using tools::JsonDocument;

JsonDocument makeContact(const st_dbReContactBean& contact, bool& whole) {
    JsonDocument element(json_value_init_object());
    forEachRecentContactField(contact, [&](int /*column*/, const char* name, const auto& field) {
        whole = setField(json_value_get_object(element.get()), name, field) && whole;
    });
    return element;
}

// Without memory a contact may lack a field, or the list a contact: such a file would pass for the whole list, and
// there is none then.
JsonDocument makeContactFile(const std::string& version, const std::vector<st_dbReContactBean>& contacts) {
    JsonDocument file(json_value_init_object());
    JSON_Object* object = json_value_get_object(file.get());
    bool whole = setField(object, kVersionKey, version);
    setValue(object, kRecentContactsKey, JsonDocument(json_value_init_array()));
    JSON_Array* list = json_object_get_array(object, kRecentContactsKey);
    whole = whole && list != nullptr;
    for (const st_dbReContactBean& contact : contacts)
        whole = appendValue(list, makeContact(contact, whole)) && whole;
    return whole ? std::move(file) : nullptr;
}

st_dbReContactBean readContact(const JSON_Object* object) {
    // Older clients wrote 1 for a pinned conversation.
    constexpr signed char kPinnedInPackage = 1;
    st_dbReContactBean contact = readRecentContact(object);
    if (contact.top == kPinnedInPackage) contact.top = kPinnedBit;
    return contact;
}

}  // namespace

void writeContactFile(const std::string& path, const std::string& version,
                      const std::vector<st_dbReContactBean>& contacts, TransferReport& report) {
    const JsonDocument file = makeContactFile(version, contacts);
    if (file && json_serialize_to_file(file.get(), path.c_str()) == JSONSuccess) {
        report.contactsWritten += static_cast<long long>(contacts.size());
    } else {
        report.skip(path, Omission::contactFileNotWritten);
    }
}

ErrorCode readContactFile(const std::string& path, const std::string& version,
                          std::vector<st_dbReContactBean>& contacts, TransferReport& report) {
    if (tools::presenceOf(path) == tools::Presence::absent) return kMissing;
    contacts.clear();
    const JsonDocument document(json_parse_file_no_link(path.c_str()));
    if (!document) {
        report.skip(path, Omission::contactFileNotJson);
        return kNotJson;
    }
    const JSON_Object* file = json_value_get_object(document.get());
    if (!hasVersion(file, version)) {
        report.skip(path, Omission::contactFileOtherVersion);
        return kWrongVersion;
    }
    forEachObject(json_object_get_array(file, kRecentContactsKey),
                  [&contacts](const JSON_Object* contact) { contacts.push_back(readContact(contact)); });
    return kSuccess;
}

}  // namespace chattransfer
