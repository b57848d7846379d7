// JSON values that somebody puts where a value of another type or range is expected.
#pragma once

#include <string>
#include <vector>

namespace test {

struct HostileValue {
    const char* label;  ///< letters only: the name of its test
    std::string json;
};

inline std::vector<HostileValue> hostileValues() {
    std::string manyKeys = "{";
    for (int i = 0; i < 20000; ++i)
        manyKeys += R"("k)" + std::to_string(i) + R"(": 0,)";
    return {
        {"Null", "null"},
        {"True", "true"},
        {"Text", R"("text")"},
        {"EmptyText", R"("")"},
        {"NumberAsText", R"("12")"},
        {"Fraction", "1.5"},
        {"Negative", "-1"},
        {"NegativeZero", "-0"},
        {"AboveTwoToThe53rd", "9007199254740993"},
        {"NineteenDigits", "9223372036854775807"},
        {"TwentyFiveDigits", "1234567890123456789012345"},
        {"LargestDouble", "1e308"},
        {"EmptyObject", "{}"},
        {"EmptyArray", "[]"},
        {"ArrayOfNulls", "[null, null]"},
        {"ArrayOfArrays", "[[[[]]], {}]"},
        {"NulText", R"("\u0000")"},
        {"IllFormedText", "\"\xff\xc0\xaf\xed\xa0\x80\""},
        {"ControlText", R"("\u001b[2J\u0007\u009b")"},
        {"SqlText", R"("'); drop table im_msg_9009; --")"},
        {"ManyKeys", manyKeys + R"("last": 0})"},
    };
}

}  // namespace test
