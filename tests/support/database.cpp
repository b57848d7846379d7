#include "tests/support/database.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/base/fixed_text.h"
#include "transfer/tables/message_table.h"

namespace test {
namespace {

std::string rowsOf(imsdk::dbUtils& db, const std::string& sql, int columns) {
    imsdk::dbDataReader reader = db.excuteQuery(sql.c_str());
    std::string text;
    while (reader.read() != 0) {
        if (!text.empty()) text += '\n';
        for (int column = 0; column < columns; ++column)
            text += (column == 0 ? "" : "|") + reader.getColumnValue(column);
    }
    EXPECT_FALSE(reader.failed()) << sql << ": " << db.lastError();
    return text;
}

// The rows of a table as SQL literals.
std::string literalsOf(imsdk::dbUtils& db, const std::string& table) {
    std::string columns =
        R"(select group_concat('quote("' || name || '")', ' || '', '' || ') from pragma_table_info(')";
    columns.append(table).append("')");
    std::string rows = "select ";
    rows.append(rowsOf(db, columns, 1)).append(" from \"").append(table).append("\" order by 1");
    return rowsOf(db, rows, 1);
}

}  // namespace

void makeDatabase(imsdk::dbUtils& db, const std::string& path, const char* key) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::app).flush();
    ASSERT_NE(0, db.open(path.c_str(), key)) << db.lastError();
}

void runSql(const std::string& path, const std::vector<std::string>& statements, const char* key) {
    imsdk::dbUtils db;
    makeDatabase(db, path, key);
    const bool opened = db.isOpen();
    ASSERT_TRUE(opened) << path;
    db.beginTransaction();
    for (const std::string& statement : statements)
        ASSERT_NE(0, db.excuteNonQuery(statement.c_str())) << statement << ": " << db.lastError();
    db.endTransaction();
    ASSERT_FALSE(db.transactionFailed()) << db.lastError();
}

std::string createMessageTable(const std::string& name) {
    return tools::FixedText<1024>(chattransfer::kCreateMessageTable, name.c_str()).text();
}

std::string queryText(const std::string& path, const std::string& sql, int columns, const char* key) {
    imsdk::dbUtils db;
    EXPECT_NE(0, db.open(path.c_str(), key)) << path << ": " << db.lastError();
    return rowsOf(db, sql, columns);
}

std::string wholeText(const std::string& path, const char* key) {
    imsdk::dbUtils db;
    EXPECT_NE(0, db.open(path.c_str(), key)) << path << ": " << db.lastError();
    std::string text = rowsOf(db, "select sql from sqlite_master order by name", 1) + "\n";
    std::istringstream tables(rowsOf(db, "select name from sqlite_master where type = 'table' order by name", 1));
    for (std::string table; std::getline(tables, table);)
        text.append(table).append(":\n").append(literalsOf(db, table)).append("\n");
    return text;
}

}  // namespace test
