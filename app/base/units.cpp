#include "app/base/units.h"

#include <array>
#include <cmath>

#include "host/base/fixed_text.h"
#include "host/base/numeric.h"

namespace app {
namespace {

using Text = tools::FixedText<64>;

}  // namespace

std::string grouped(long long number) {
    std::string digits = std::to_string(number);
    const std::size_t first = number < 0 ? 1 : 0;
    for (std::size_t end = digits.size(); end > first + 3; end -= 3)
        digits.insert(end - 3, ",");
    return digits;
}

std::string humanSize(unsigned long long bytes) {
    if (bytes < 1000) return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    constexpr std::array<const char*, 4> kUnits = {"kB", "MB", "GB", "TB"};
    double value = static_cast<double>(bytes) / 1000;
    std::size_t unit = 0;
    // 999.95 would show as 1000.0 of the smaller unit.
    for (; value >= 999.95 && unit + 1 < kUnits.size(); ++unit)
        value /= 1000;
    return Text("%.1f %s", value, kUnits.at(unit)).text();
}

std::string humanDuration(double seconds) {
    if (seconds < 1) return Text("%.2f s", seconds).text();
    if (seconds < 59.95) return Text("%.1f s", seconds).text();
    const auto whole = tools::truncateTo<long long>(std::round(seconds));
    if (whole < 3600) return Text("%lld min %02lld s", whole / 60, whole % 60).text();
    return Text("%lld h %02lld min", whole / 3600, whole / 60 % 60).text();
}

std::string counted(long long number, const std::string& singular, const std::string& plural) {
    return grouped(number) + " " + (number == 1 ? singular : plural);
}

}  // namespace app
