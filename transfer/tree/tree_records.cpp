#include "transfer/tree/tree_records.h"

#include "host/tools.h"
#include "transfer/format/json_fields.h"
#include "transfer/format/package_format.h"

namespace chattransfer {

st_noteTrans readNote(const JSON_Object* object) {
    st_noteTrans note;
    forEachNoteKey(note, [object](const char* key, auto& field) { getField(object, key, field); });
    return note;
}

st_roomTrans readRoom(const JSON_Object* object) {
    st_roomTrans room;
    getField(object, "name", room.roomName);
    signed char top = 0;
    getField(object, "top", top);
    room.top = int{top};
    const JSON_Array* members = json_object_get_array(object, kRoomMembersKey);
    std::vector<long long> ids;
    for (size_t i = json_array_get_count(members); i-- > 0;)
        ids.push_back(json_array_get_int64(members, i));
    room.roomMember = tools::int64_To_String(ids, kListSeparator);
    return room;
}

}  // namespace chattransfer
