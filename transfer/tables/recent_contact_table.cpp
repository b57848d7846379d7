#include "transfer/tables/recent_contact_table.h"

#include "transfer/format/json_fields.h"

namespace chattransfer {

void readRecentContactRow(imsdk::dbDataReader& reader, imsdk::st_dbReContactBean& contact) {
    forEachRecentContactField(
        contact, [&reader](int column, const char* /*name*/, auto& field) { reader.getColumnValue(column, field); });
}

imsdk::st_dbReContactBean readRecentContact(const JSON_Object* object) {
    imsdk::st_dbReContactBean contact;
    forEachRecentContactField(
        contact, [object](int /*column*/, const char* name, auto& field) { getField(object, name, field); });
    return contact;
}

}  // namespace chattransfer
