// How many of the records that were read the databases refused.
#pragma once

#include "transfer/dbTrans.h"

namespace app {

[[nodiscard]] long long refusedContacts(const dbTrans& transfer);
[[nodiscard]] long long refusedNotes(const dbTrans& transfer);
[[nodiscard]] long long refusedRooms(const dbTrans& transfer);

}  // namespace app
