#include "tests/differential/json_generator.h"

#include <array>

namespace test {
namespace {

template <std::size_t Count>
const char* pick(JsonGenerator& generator, const std::array<const char*, Count>& choices) {
    return choices.at(static_cast<std::size_t>(generator.upTo(static_cast<int>(Count))));
}

}  // namespace

std::string JsonGenerator::blanks() {
    static constexpr std::array<const char*, 8> choices = {"", "", "", "", " ", "\n\t", " \r\n", "\v\f"};
    static constexpr std::array<const char*, 12> remarks = {
        "/**/",        "/* x */",    "// x\n",    "//\n",         "/* \" */", "// \"\n",
        "/* // */ \n", "// /*\n*/ ", "/*/ \\ */", "/***/ /**/\n", "//* x\n",  "/* unfinished"};
    if (comments_ == Comments::between && upTo(5) == 0) {
        // The pieces from 7 on are odd or invalid: rare, as in strings.
        return remarks.at(static_cast<std::size_t>(upTo(15) == 0 ? upTo(12) : upTo(7)));
    }
    return pick(*this, choices);
}

std::string JsonGenerator::string() {
    static constexpr std::array<const char*, 22> pieces = {"a",
                                                           "plain ascii text",
                                                           "\\n",
                                                           "\\\\",
                                                           "\\\"",
                                                           "\\/",
                                                           "/",
                                                           "\\u0041",
                                                           "\\u00e9",
                                                           "\\u20ac",
                                                           "\\ud83d\\ude00",
                                                           "\xC3\xA9",
                                                           "\xF0\x9F\x98\x80",
                                                           "\xFF",
                                                           "\\u0000",
                                                           "\\ud83d",
                                                           "\\x",
                                                           "\x01",
                                                           "\x7F",
                                                           "\\u12",
                                                           R"(\b\f\r\t)",
                                                           "\xE4\xBD\xA0"};
    std::string text = "\"";
    for (int i = upTo(5); i > 0; --i) {
        // The pieces from 14 on are odd or invalid: rare, or no text would be valid.
        const int index = upTo(30) == 0 ? upTo(22) : upTo(14);
        text += pieces.at(static_cast<std::size_t>(index));
    }
    return text + "\"";
}

std::string JsonGenerator::number() {
    static constexpr std::array<const char*, 30> odd = {"-0",
                                                        "0",
                                                        "0.5",
                                                        "1e3",
                                                        "1E-3",
                                                        "1.",
                                                        "-.5",
                                                        "01",
                                                        "-01",
                                                        "0e5",
                                                        "-0e5",
                                                        "0x10",
                                                        "1e400",
                                                        "1e-400",
                                                        "-",
                                                        "-inf",
                                                        "9007199254740993",
                                                        "-9007199254740993",
                                                        "9223372036854775807",
                                                        "-9223372036854775808",
                                                        "9223372036854775808",
                                                        "99999999999999999999",
                                                        "12345678901234567890123",
                                                        "1e300",
                                                        "4.9e-324",
                                                        "2147483648",
                                                        "-2147483649",
                                                        "1e",
                                                        "00",
                                                        "3.0000000000000001"};
    if (upTo(6) == 0) return pick(*this, odd);
    return std::to_string(static_cast<long long>(random_()) * upTo(5) - 1000000);
}

std::string JsonGenerator::digits(int count) {
    std::string text(1, static_cast<char>('1' + upTo(9)));
    while (text.size() < static_cast<std::size_t>(count))
        text += static_cast<char>('0' + upTo(10));
    return text;
}

std::string JsonGenerator::longNumber() {
    std::string text = upTo(2) == 0 ? "-" : "";
    text += upTo(3) == 0 ? "0" : digits(1 + upTo(25));
    if (upTo(4) != 0) text += "." + std::string(static_cast<std::size_t>(upTo(10)), '0') + digits(1 + upTo(25));
    if (upTo(2) == 0) text += (upTo(2) == 0 ? "e" : "E-") + std::to_string(upTo(330));
    return text;
}

std::string JsonGenerator::nested(int depth, const std::string& inside) {
    std::string begin;
    std::string end;
    for (int i = 0; i < depth; ++i) {
        const bool isObject = i + 1 < depth && upTo(2) == 0;
        begin += isObject ? R"({"a":)" : "[";
        end += isObject ? '}' : ']';
    }
    return begin + inside + std::string(end.rbegin(), end.rend());
}

std::string JsonGenerator::object(int depth) {
    static constexpr std::array<const char*, 8> names = {"a", "b", "version", "msgs", "date", "year", "name", "#x"};
    std::string text = "{" + blanks();
    const int count = upTo(4);
    const int start = upTo(8);
    for (int i = 0; i < count; ++i) {
        // Consecutive names differ; a duplicate comes up now and then.
        const int index = upTo(40) == 0 ? start : (start + i) % 8;
        const std::string name =
            upTo(10) == 0 ? string() : "\"" + std::string(names.at(static_cast<std::size_t>(index))) + "\"";
        text += (i > 0 ? "," + blanks() : "") + name + blanks() + ":" + value(depth - 1) + blanks();
    }
    return text + "}";
}

std::string JsonGenerator::array(int depth) {
    std::string text = "[" + blanks();
    for (int i = upTo(4); i > 0; --i)
        text += value(depth - 1) + (i > 1 ? "," : "");
    return text + blanks() + "]";
}

std::string JsonGenerator::value(int depth) {
    static constexpr std::array<const char*, 4> words = {"true", "false", "null", "nul"};
    switch (depth > 0 ? upTo(8) : 4 + upTo(4)) {
        case 0:
        case 1:
            return blanks() + object(depth);
        case 2:
        case 3:
            return blanks() + array(depth);
        case 4:
            return blanks() + (upTo(20) == 0 ? words.back() : words.at(static_cast<std::size_t>(upTo(3))));
        case 5:
            return blanks() + string();
        default:
            return blanks() + number();
    }
}

std::string JsonGenerator::broken(std::string text) {
    for (int i = 1 + upTo(3); i > 0 && !text.empty(); --i) {
        const auto position = static_cast<std::size_t>(upTo(static_cast<int>(text.size())));
        static constexpr std::array<const char*, 14> bytes = {"{",  "}", "[", "]", ",", ":", "\"",
                                                              "\\", "0", "x", "-", " ", "/", "*"};
        switch (upTo(4)) {
            case 0:
                text.erase(position, 1);
                break;
            case 1:
                text.insert(position, pick(*this, bytes));
                break;
            case 2:
                text[position] = static_cast<char>(upTo(256));
                break;
            default:
                text.resize(position);
        }
    }
    return text;
}

}  // namespace test
