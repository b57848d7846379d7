// Finds message tables among the names of a database in constant time: 20,000 conversations looked up one after another
// in a plain list would cost more than writing them.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "transfer/tables/message_table.h"

namespace chattransfer {

/// An index over a table list that does not change otherwise while the index lives.
class TableIndex {
public:
    explicit TableIndex(const std::vector<std::string>& names) : names_(names.begin(), names.end()) {}

    /// The conversation's table, or an empty text.
    std::string find(long long targetID) const {
        const std::string name = messageTableName(targetID).text();
        return names_.count(name) != 0 ? name : std::string();
    }

    void add(const std::string& name) { names_.insert(name); }

private:
    std::unordered_set<std::string> names_;
};

}  // namespace chattransfer
