#include "bench/driver/comparison.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <vector>

#include "bench/sqlite_handles.h"

namespace fs = std::filesystem;

namespace bench {
namespace {

std::set<std::string> filesIn(const std::string& folder) {
    std::set<std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file()) files.insert(fs::relative(entry.path(), folder).string());
    return files;
}

bool sameBytes(const std::string& one, const std::string& other) {
    if (fs::file_size(one) != fs::file_size(other)) return false;
    std::ifstream first(one, std::ios::binary);
    std::ifstream second(other, std::ios::binary);
    using Bytes = std::istreambuf_iterator<char>;
    return std::equal(Bytes(first), Bytes(), Bytes(second));
}

// Holds the rows of a query in one database against those in another.
void requireSameResult(sqlite3* expected, sqlite3* actual, const std::string& query) {
    const Statement left = prepare(expected, query);
    const Statement right = prepare(actual, query);
    for (;;) {
        const bool row = step(left.get());
        bool same = row == step(right.get());
        for (int column = 0; same && row && column < sqlite3_column_count(left.get()); ++column) {
            same = sqlite3_column_type(left.get(), column) == sqlite3_column_type(right.get(), column) &&
                   textOf(left.get(), column) == textOf(right.get(), column);
        }
        if (!same) throw std::runtime_error("the databases differ: " + query);
        if (!row) return;
    }
}

std::vector<std::string> tablesOf(sqlite3* db) {
    std::vector<std::string> names;
    const Statement list = prepare(db, "select name from sqlite_master where type='table'");
    while (step(list.get()))
        names.emplace_back(textOf(list.get(), 0));
    return names;
}

}  // namespace

void requireSameFiles(const std::string& expected, const std::string& actual) {
    const std::set<std::string> files = filesIn(expected);
    if (files != filesIn(actual)) throw std::runtime_error("the packages hold different files: " + actual);
    for (const std::string& file : files) {
        if (!sameBytes(expected + "/" + file, actual + "/" + file))
            throw std::runtime_error("the packages differ in " + file + ": " + actual);
    }
}

void requireSameRows(const std::string& expected, const std::string& actual, Schema schema) {
    const Database left = openDatabase(expected);
    const Database right = openDatabase(actual);
    const std::string columns = schema == Schema::compared ? "type, name, sql" : "type, name";
    requireSameResult(left.get(), right.get(), "select " + columns + " from sqlite_master");
    for (const std::string& table : tablesOf(left.get()))
        requireSameResult(left.get(), right.get(), "select rowid, * from " + table);
}

long long countFiles(const std::string& folder, const std::string& ending) {
    long long count = 0;
    for (const std::string& file : filesIn(folder))
        if (file.size() >= ending.size() && file.compare(file.size() - ending.size(), ending.size(), ending) == 0)
            ++count;
    return count;
}

long long countMessages(const std::string& database, const char* key) {
    const Database db = openDatabase(database, false, key);
    long long count = 0;
    for (const std::string& table : tablesOf(db.get())) {
        if (table.compare(0, 7, "im_msg_") != 0) continue;
        const Statement rows = prepare(db.get(), "select count(*) from " + table);
        if (step(rows.get())) count += sqlite3_column_int64(rows.get(), 0);
    }
    return count;
}

void requireSameCount(long long expected, long long actual, const std::string& of) {
    if (expected == actual) return;
    throw std::runtime_error(of + ": expected " + std::to_string(expected) + ", found " + std::to_string(actual));
}

}  // namespace bench
