#include "transfer/format/package_format.h"

#include <vector>

#include "host/base/fixed_text.h"
#include "host/tools.h"

namespace chattransfer {

bool isVersion(const std::optional<std::string>& stated, const std::string& expected) {
    return stated == expected;
}

CalendarDay dayOfKey(const std::string& dayKey, const char* separator) {
    std::vector<long long> numbers = tools::string_To_Vec_Int64(dayKey, separator);
    numbers.resize(3);
    return {numbers[0], numbers[1], numbers[2]};
}

std::string messageFilePath(const std::string& folder, int number) {
    const tools::FixedText<kMessageFileNameSize> name(kMessageFileName, number);
    // Hosts know this limit: what passes it counts as missing.
    const tools::FixedText<260> path("%s%s", folder.c_str(), name.text());
    return path.text();
}

}  // namespace chattransfer
