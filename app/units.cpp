#include "app/units.h"

#include <array>
#include <cstdio>

namespace app {
namespace {

template <class... Arguments>
std::string formatted(const char* format, Arguments... arguments) {
    std::array<char, 64> buffer{};
    std::snprintf(buffer.data(), buffer.size(), format, arguments...);
    return buffer.data();
}

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
    return formatted("%.1f %s", value, kUnits.at(unit));
}

std::string humanDuration(double seconds) {
    if (seconds < 1) return formatted("%.2f s", seconds);
    if (seconds < 59.95) return formatted("%.1f s", seconds);
    const auto whole = static_cast<long long>(seconds + 0.5);
    if (whole < 3600) return formatted("%lld min %02lld s", whole / 60, whole % 60);
    return formatted("%lld h %02lld min", whole / 3600, whole / 60 % 60);
}

std::string counted(long long number, const std::string& singular, const std::string& plural) {
    return grouped(number) + " " + (number == 1 ? singular : plural);
}

double Stopwatch::seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

}  // namespace app
