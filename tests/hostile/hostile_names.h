// Names that somebody puts where a file name is expected, hoping that it leads elsewhere.
#pragma once

#include <string>
#include <vector>

namespace test {

/// A name as the text of a JSON string, quotes left out: escapes stand for the bytes that cannot be written plainly.
struct HostileName {
    const char* label;  ///< letters only: the name of its test
    std::string json;
};

/// All of them aim at "private/secret.txt" beside the account and the backup, or at something worse.
inline std::vector<HostileName> hostileNames() {
    const std::string veryLong(300, 'x');
    return {
        {"TwoDots", ".."},
        {"StepUp", "../private/secret.txt"},
        {"StepsUp", "../../../../private/secret.txt"},
        {"StepsUpFromTheTree", "../../../../../private/secret.txt"},
        {"StepsUpInside", "a/../../../../../private/secret.txt"},
        {"StepsUpDoubled", "....//....//private/secret.txt"},
        {"StepsUpBackslashes", R"(..\\..\\..\\private\\secret.txt)"},
        {"StepsUpEncoded", "%2e%2e%2f%2e%2e%2fprivate/secret.txt"},
        {"StepsUpOverlong", "\xC0\xAE\xC0\xAE/private/secret.txt"},
        {"Absolute", "/private/secret.txt"},
        {"AbsoluteOfTheSystem", "/etc/passwd"},
        {"FileUrl", "file:///etc/passwd"},
        {"OneDot", "."},
        {"NoName", ""},
        {"OnlySlashes", "///"},
        {"SlashAtTheEnd", "a/"},
        {"LongComponent", veryLong},
        {"LongPath", veryLong + "/" + veryLong + "/" + veryLong + "/" + veryLong + "/x"},
        {"NulInside", "a\\u0000/../../../../private/secret.txt"},
        {"NulAtTheStart", "\\u0000secret.txt"},
        {"DeviceName", "CON"},
        {"DeviceNameWithEnding", "nul.txt"},
        {"DeviceNumbered", "com1"},
        {"StreamName", "a.txt:stream"},
        {"DotAtTheEnd", "a.txt."},
        {"BlankAtTheEnd", "a.txt "},
        {"LineFeed", "a\\n../../private/secret.txt"},
        {"EscapeSequence", "\\u001b]0;owned\\u0007"},
        {"LoneSurrogate", "\\ud800"},
        {"IllFormed", "\xff\xfe/\x80"},
        {"OptionLike", "-rf"},
        {"HomeLike", "~/private/secret.txt"},
        {"VariableLike", "$HOME/private/secret.txt"},
        {"CommandLike", "$(touch owned)"},
        {"TemporaryName", ".chat-transfer-1-0.part"},
        {"DatabaseName", "../db/imsg.db"},
        {"JournalName", "../db/imsg.db-journal"},
    };
}

}  // namespace test
