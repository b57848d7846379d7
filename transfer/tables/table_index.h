// Finds message tables among the names of a database in constant time: 20,000 conversations looked up one after another
// in a plain list would cost more than writing them.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "transfer/tables/message_table.h"

namespace chattransfer {

/// A list of tables and an index over it; the list does not change otherwise while the index lives.
class TableIndex {
public:
    /// `names` is not owned.
    explicit TableIndex(std::vector<std::string>& names) : list_(names), index_(names.begin(), names.end()) {}

    /// The conversation's table, or an empty text.
    [[nodiscard]] std::string find(long long targetID) const {
        std::string name = messageTableName(targetID).text();
        return index_.count(name) != 0 ? name : std::string();
    }

    void add(const std::string& name) {
        index_.insert(name);
        list_.push_back(name);
    }

    /// How many tables the list has.
    [[nodiscard]] std::size_t size() const { return list_.size(); }

private:
    std::vector<std::string>& list_;
    std::unordered_set<std::string> index_;
};

}  // namespace chattransfer
