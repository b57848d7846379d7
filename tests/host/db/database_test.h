// The fixture of the database layer's tests: one open database file in a folder of its own.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "host/dbUtils.h"
#include "tests/support/database.h"
#include "tests/support/temp_dir.h"

namespace test {

class DatabaseTest : public testing::Test {
protected:
    void SetUp() override { makeDatabase(db, path()); }

    std::string path() const { return dir.at("test.db"); }

    bool run(const std::string& sql) { return db.excuteNonQuery(sql.c_str()) != 0; }

    /// The first column of the first row; empty when there is none.
    static std::string valueIn(imsdk::dbUtils& connection, const std::string& sql) {
        imsdk::dbDataReader reader = connection.excuteQuery(sql.c_str());
        return reader.read() != 0 ? reader.getColumnValue(0) : "";
    }
    std::string value(const std::string& sql) { return valueIn(db, sql); }

    /// What another connection sees: only what has been committed.
    std::string committed(const std::string& sql) const { return queryText(path(), sql, 1); }

    TempDir dir;
    imsdk::dbUtils db;
};

}  // namespace test
