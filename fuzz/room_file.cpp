// A room file of a tree. A room whose name has an apostrophe, or is very long, is not found again and stands twice:
// that is the rule, and only for those.
#include <algorithm>

#include "fuzz/tree_records.h"

namespace {

bool isFoundAgain(const st_roomTrans& room) {
    constexpr std::size_t kSurelyFits = 400;
    return room.roomName.find('\'') == std::string::npos &&
           room.roomName.size() + room.roomMember.size() <= kSurelyFits;
}

void readFindableRooms(dbTrans& transfer) {
    transfer.readRoomFromFileNJ();
    auto& rooms = transfer.rooms;
    rooms.erase(std::remove_if(rooms.begin(), rooms.end(), [](const auto& room) { return !isFoundAgain(room); }),
                rooms.end());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::TreeSandbox sandbox;
    fuzz::requireWrittenOnce(sandbox, "rooms.rm", std::string(reinterpret_cast<const char*>(data), size),
                             readFindableRooms);
    return 0;
}
