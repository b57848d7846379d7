#include "host/db/bound_values.h"

#include <new>

namespace imsdk::detail {
namespace {

void keepText(std::variant<std::monostate, long long, std::string>& value, const char* text) {
    if (text == nullptr) {
        value = std::monostate();
    } else if (auto* kept = std::get_if<std::string>(&value)) {
        *kept = text;
    } else {
        value.emplace<std::string>(text);
    }
}

}  // namespace

int BoundValues::bindText(sqlite3_stmt* statement, int index, const char* text) {
    return keepAndBind(statement, index, [text](Value& value) { keepText(value, text); });
}

int BoundValues::bindNumber(sqlite3_stmt* statement, int index, long long number) {
    return keepAndBind(statement, index, [number](Value& value) { value = number; });
}

void BoundValues::bindAll(sqlite3_stmt* statement) {
    for (int index = 1; index <= static_cast<int>(values_.size()); ++index) {
        if (lost_.count(index) == 0 && bind(statement, index) != SQLITE_OK) lose(index);
    }
}

void BoundValues::lose(int index) noexcept try { lost_.insert(index); } catch (const std::bad_alloc&) {
    spoiled_ = true;
}

void BoundValues::clear() {
    values_.clear();
    lost_.clear();
    spoiled_ = false;
}

// Throws nothing, as SQLite's own functions: no memory is a result.
template <class Keep>
int BoundValues::keepAndBind(sqlite3_stmt* statement, int index, Keep keep) try {
    if (index < 1 || index > sqlite3_bind_parameter_count(statement)) {
        lose(index);
        // cppcheck-suppress invalidFunctionArg
        return sqlite3_bind_null(statement, index);  // SQLite's own words for it
    }
    const auto place = static_cast<std::size_t>(index - 1);
    if (place >= values_.size()) values_.resize(place + 1);
    keep(values_[place]);
    const int code = bind(statement, index);
    if (code != SQLITE_OK) {
        lose(index);
    } else if (!lost_.empty()) {
        lost_.erase(index);
    }
    return code;
} catch (const std::bad_alloc&) {
    lose(index);
    return SQLITE_NOMEM;
}

int BoundValues::bind(sqlite3_stmt* statement, int index) {
    const Value& value = values_[static_cast<std::size_t>(index - 1)];
    if (const auto* text = std::get_if<std::string>(&value))
        return sqlite3_bind_text64(statement, index, text->data(), text->size(), SQLITE_STATIC, SQLITE_UTF8);
    if (const auto* number = std::get_if<long long>(&value)) return sqlite3_bind_int64(statement, index, *number);
    return sqlite3_bind_null(statement, index);
}

}  // namespace imsdk::detail
