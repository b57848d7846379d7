// How many of the records that were read the databases refused.
#pragma once

#include "transfer/dbTrans.h"

namespace app {

long long refusedContacts(const dbTrans& transfer);
long long refusedNotes(const dbTrans& transfer);
long long refusedRooms(const dbTrans& transfer);

}  // namespace app
