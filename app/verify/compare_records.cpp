#include "app/verify/compare_records.h"

#include <variant>

#include "host/base/numeric.h"
#include "host/base/utf8.h"
#include "host/tools.h"
#include "transfer/format/package_format.h"
#include "transfer/tables/recent_contact_table.h"

namespace app {
namespace {

using imsdk::st_dbMessageBean;
using imsdk::st_dbReContactBean;

void compareField(Comparison& result, const char* name, long long row, long long packaged) {
    if (row == packaged) return;
    if (asPackaged(row) == packaged) {
        result.rules.insert(Rule::idRounded);
    } else {
        result.differing.emplace_back(name);
    }
}

void compareField(Comparison& result, const char* name, int row, int packaged) {
    if (row != packaged) result.differing.emplace_back(name);
}

void compareField(Comparison& result, const char* name, signed char row, signed char packaged) {
    if (row != packaged) result.differing.emplace_back(name);
}

void compareField(Comparison& result, const char* name, const std::string& row, const std::string& packaged) {
    if (row == packaged) return;
    const std::string text = row.substr(0, row.find('\0'));
    const std::string repaired = tools::toWellFormedUtf8(text);
    if (repaired != packaged) {
        result.differing.emplace_back(name);
        return;
    }
    if (text.size() != row.size()) result.rules.insert(Rule::textCutAtNul);
    if (repaired != text) result.rules.insert(Rule::textRepaired);
}

// The fields of one record in the order in which the visitor passes them.
class FieldList {
public:
    template <class Field>
    void add(const Field& field) {
        fields_.emplace_back(&field);
    }

    template <class Field>
    const Field& at(std::size_t index) const {
        return *std::get<const Field*>(fields_.at(index));
    }

private:
    std::vector<std::variant<const std::string*, const long long*, const int*, const signed char*>> fields_;
};

// The list column as the writer of packages splits it.
std::string listAsPackaged(const std::string& joined) {
    std::vector<long long> numbers = tools::string_To_Vec_Int64(joined, chattransfer::kListSeparator);
    for (long long& number : numbers)
        number = asPackaged(number);
    return tools::int64_To_String(numbers, chattransfer::kListSeparator);
}

struct ListTexts {
    const std::string& row;
    const std::string& ofMessage;
    std::string ofDay;
};

void compareList(Comparison& result, const char* name, const ListTexts& list, Direction direction) {
    if (list.row == list.ofMessage) return;
    if (listAsPackaged(list.row) == list.ofMessage) {
        result.rules.insert(Rule::listsOfNumbers);
    } else if (direction == Direction::exported || list.row != list.ofDay) {
        result.differing.emplace_back(name);
    } else {
        result.rules.insert(Rule::listsDropped);
    }
}

void compareLists(Comparison& result, const st_dbMessageBean& row, const PackageMessage& message, Direction direction) {
    const DayLists none;
    const DayLists& day = message.dayLists ? *message.dayLists : none;
    compareList(result, "limitRange", {row.limitRange, message.record.limitRange, day.limitRange}, direction);
    compareList(result, "relatedUsers", {row.relatedUsers, message.record.relatedUsers, day.relatedUsers}, direction);
}

void compareSecurityLevel(Comparison& result, int row, int packaged, Direction direction) {
    if (row == packaged) return;
    if (row == 0 && direction != Direction::exported) {
        result.rules.insert(Rule::securityLevelDropped);
    } else {
        result.differing.emplace_back("securityLevel");
    }
}

void compareDay(Comparison& result, const st_dbMessageBean& row, const st_dbMessageBean& packaged) {
    compareField(result, "year_", row.year_, packaged.year_);
    compareField(result, "mon", row.mon, packaged.mon);
    compareField(result, "day_", row.day_, packaged.day_);
}

// What an import sets for every message.
bool hasValuesThatNoPackageCarries(const st_dbMessageBean& row) {
    return row.status != chattransfer::kImportedStatus || row.burnAfterReading != 0 || row.localID != 0;
}

bool isConvertedPin(signed char row, signed char packaged) {
    return packaged == 1 && row == chattransfer::kPinnedBit;
}

}  // namespace

long long asPackaged(long long id) {
    return tools::truncateTo<long long>(static_cast<double>(id));
}

Comparison compareMessages(const st_dbMessageBean& row, const PackageMessage& message, Direction direction) {
    Comparison result;
    FieldList packaged;
    chattransfer::forEachMessageKey(message.record,
                                    [&](const char*, chattransfer::KeyUse, const auto& field) { packaged.add(field); });
    std::size_t index = 0;
    chattransfer::forEachMessageKey(row, [&](const char* key, chattransfer::KeyUse use, const auto& field) {
        const auto& other = packaged.at<std::decay_t<decltype(field)>>(index++);
        if (use == chattransfer::KeyUse::always) compareField(result, key, field, other);
    });
    compareSecurityLevel(result, row.securityLevel, message.record.securityLevel, direction);
    compareLists(result, row, message, direction);
    compareDay(result, row, message.record);
    if (hasValuesThatNoPackageCarries(row)) result.rules.insert(Rule::notCarried);
    return result;
}

Comparison compareContacts(const st_dbReContactBean& row, const st_dbReContactBean& contact, Direction direction) {
    Comparison result;
    st_dbReContactBean packaged = contact;
    if (isConvertedPin(row.top, contact.top) && direction != Direction::exported) {
        packaged.top = row.top;
        result.rules.insert(Rule::pinConverted);
    }
    FieldList fields;
    chattransfer::forEachRecentContactField(packaged, [&](int, const char*, const auto& field) { fields.add(field); });
    std::size_t index = 0;
    chattransfer::forEachRecentContactField(row, [&](int, const char* name, const auto& field) {
        compareField(result, name, field, fields.at<std::decay_t<decltype(field)>>(index++));
    });
    // What the account has of a conversation already is at least as good as what a package says.
    if (direction == Direction::imported && !result.differing.empty()) {
        result.differing.clear();
        result.rules = {Rule::contactKept};
    }
    return result;
}

}  // namespace app
