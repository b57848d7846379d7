#include "transfer/package/message_selection.h"

namespace chattransfer {

SelectStatement selectStatement(const std::string& table, const FirstDay& since) {
    return SelectStatement(
        "select * from %s where (year_ > %d) or (year_ = %d and mon > %d) or (year_ = %d and mon = %d and day_ >= %d)",
        table.c_str(), since.year, since.year, since.mon, since.year, since.mon, since.day);
}

}  // namespace chattransfer
