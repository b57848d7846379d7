#include "transfer/tables/message_table.h"

#include <algorithm>
#include <cstring>

#include "transfer/tables/bind_field.h"

namespace chattransfer {
namespace {

std::string buildInsertFormat() {
    std::string names;
    std::string placeholders;
    const imsdk::st_dbMessageBean any;
    forEachMessageColumn(any, [&](int index, const char* name, ColumnUse use, const auto& /*field*/) {
        if (use != ColumnUse::always) return;
        const char* separator = index == 0 ? "" : ",";
        names.append(separator).append(name);
        placeholders.append(separator).append("?");
    });
    return "insert into %s(" + names + ") values(" + placeholders + ")";
}

bool isIdentifierByte(unsigned char byte) {
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
           byte == '_' || byte == '$' || byte >= 0x80;
}

}  // namespace

void readMessageRow(imsdk::dbDataReader& reader, imsdk::st_dbMessageBean& record) {
    forEachMessageColumn(record, [&reader](int index, const char* /*name*/, ColumnUse /*use*/, auto& field) {
        reader.getColumnValue(index, field);
    });
}

const std::string& insertMessageFormat() {
    static const std::string format = buildInsertFormat();
    return format;
}

void bindMessage(imsdk::dbCommand& command, const imsdk::st_dbMessageBean& record) {
    forEachMessageColumn(record, [&command](int index, const char* /*name*/, ColumnUse use, const auto& field) {
        if (use == ColumnUse::always) bindField(command, index + 1, field);
    });
}

bool isMessageTable(const std::string& name) {
    return name.compare(0, std::strlen(kMessageTablePrefix), kMessageTablePrefix) == 0;
}

bool isPlainTableName(const std::string& name) {
    const bool leads = !name.empty() && name.front() != '$' && (name.front() < '0' || name.front() > '9');
    return leads && std::all_of(name.begin(), name.end(),
                                [](char c) { return isIdentifierByte(static_cast<unsigned char>(c)); });
}

int countTableRows(imsdk::dbUtils& db, const std::string& table) {
    if (!isPlainTableName(table)) return 0;
    // Hosts know this limit: a name that passes it has no rows.
    return countOf(db, tools::FixedText<256>("select count(*) from %s", table.c_str()));
}

}  // namespace chattransfer
