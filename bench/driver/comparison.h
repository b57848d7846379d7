// The proof that two contenders did the same work.
#pragma once

#include <string>

namespace bench {

/// Throws when the two folders do not hold the same files with the same bytes.
void requireSameFiles(const std::string& expected, const std::string& actual);

enum class Schema { compared, ignored };

/// Throws when the two databases differ in a table's rows or in their order, or (unless ignored) in the text of the
/// schema.
void requireSameRows(const std::string& expected, const std::string& actual, Schema schema = Schema::compared);

/// How many files the folder holds, at any depth, whose names end in `ending`.
long long countFiles(const std::string& folder, const std::string& ending);

/// How many messages the database holds, over all conversations.
long long countMessages(const std::string& database, const char* key = nullptr);

/// Throws when the two counts differ.
void requireSameCount(long long expected, long long actual, const std::string& of);

}  // namespace bench
