#include "host/db/bound_values.h"

#include <new>

namespace imsdk::detail {

// No memory is a result, as it is for SQLite's own functions.
int BoundValues::bindText(sqlite3_stmt* statement, int index, const char* text) try {
    Value* value = at(index);
    if (value == nullptr) return noted(index, sqlite3_bind_null(statement, index));
    value->kind = text != nullptr ? Value::Kind::text : Value::Kind::null;
    if (text != nullptr) value->text = text;
    return noted(index, bind(statement, index, *value));
} catch (const std::bad_alloc&) {
    return noted(index, SQLITE_NOMEM);
}

int BoundValues::bindNumber(sqlite3_stmt* statement, int index, long long number) {
    if (Value* value = at(index)) {
        value->kind = Value::Kind::number;
        value->number = number;
    }
    return noted(index, sqlite3_bind_int64(statement, index, number));
}

void BoundValues::bindAll(sqlite3_stmt* statement) {
    values_.resize(static_cast<std::size_t>(sqlite3_bind_parameter_count(statement)));
    for (int index = 1; const Value* value = at(index); ++index) {
        if (value->kind != Value::Kind::null && bind(statement, index, *value) != SQLITE_OK) lose(index);
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

BoundValues::Value* BoundValues::at(int index) {
    const auto place = static_cast<std::size_t>(index) - 1;
    return place < values_.size() ? &values_[place] : nullptr;
}

int BoundValues::noted(int index, int code) {
    if (code != SQLITE_OK) {
        lose(index);
    } else if (!lost_.empty()) {
        lost_.erase(index);
    }
    return code;
}

int BoundValues::bind(sqlite3_stmt* statement, int index, const Value& value) {
    switch (value.kind) {
        case Value::Kind::number:
            return sqlite3_bind_int64(statement, index, value.number);
        case Value::Kind::text:
            return sqlite3_bind_text64(statement, index, value.text.data(), value.text.size(), SQLITE_STATIC,
                                       SQLITE_UTF8);
        case Value::Kind::null:
            break;
    }
    return sqlite3_bind_null(statement, index);
}

}  // namespace imsdk::detail
