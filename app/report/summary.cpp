#include "app/report/summary.h"

#include "app/base/text_table.h"
#include "app/base/units.h"

namespace app {
namespace {

std::string shownValue(const Summary::Row& row) {
    if (const auto* text = std::get_if<std::string>(&row.value)) return *text;
    const long long number = std::get<long long>(row.value);
    return row.shown == Summary::Shown::asSize ? humanSize(static_cast<unsigned long long>(number)) : grouped(number);
}

bool isShown(const Summary::Row& row) {
    return row.shown != Summary::Shown::ifAny || std::get<long long>(row.value) != 0;
}

}  // namespace

void Summary::add(const std::string& key, const std::string& label, long long number) {
    rows_.push_back({key, label, number, Shown::always});
}

void Summary::add(const std::string& key, const std::string& label, const std::string& text) {
    rows_.push_back({key, label, text, Shown::always});
}

void Summary::addIfAny(const std::string& key, const std::string& label, long long number) {
    rows_.push_back({key, label, number, Shown::ifAny});
}

void Summary::addSize(const std::string& key, const std::string& label, unsigned long long bytes) {
    rows_.push_back({key, label, static_cast<long long>(bytes), Shown::asSize});
}

void Summary::print(std::ostream& out, double seconds) const {
    TextTable table({Align::left, Align::right});
    for (const Row& row : rows_) {
        if (isShown(row)) table.add({row.label, shownValue(row)});
    }
    table.add({"Time", humanDuration(seconds)});
    table.print(out);
}

}  // namespace app
