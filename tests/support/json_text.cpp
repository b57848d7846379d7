#include "tests/support/json_text.h"

namespace test {

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
        constexpr const char* kDigits = "0123456789abcdef";
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20) {
            result += std::string(R"(\u00)") + kDigits[byte / 16] + kDigits[byte % 16];
        } else {
            result += (c == '"' || c == '\\' ? R"(\)" : "") + std::string(1, c);
        }
    }
    return result + "\"";
}

}  // namespace test
