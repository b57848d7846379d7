// Real databases for tests.
#pragma once

#include <string>
#include <vector>

#include "host/dbUtils.h"

namespace test {

/// Makes the empty database file `path` (folders included), or leaves an existing one, and opens it.
void makeDatabase(imsdk::dbUtils& db, const std::string& path, const char* key = nullptr);

/// Runs statements on a database file that makeDatabase() made or opens; fails the test when one fails.
void runSql(const std::string& path, const std::vector<std::string>& statements, const char* key = nullptr);

/// The statement that makes a conversation's table, or one of any name.
std::string createMessageTable(const std::string& name);

/// All rows of a query, columns joined by "|", rows by "\n"; NULL shows as an empty text.
std::string queryText(const std::string& path, const std::string& sql, int columns, const char* key = nullptr);

/// Everything that a database holds: the schema, and each table's rows as SQL literals, so that NULL, texts and numbers
/// are told apart. Rows are sorted: the order in which they were inserted makes no difference.
std::string wholeText(const std::string& path, const char* key = nullptr);

}  // namespace test
