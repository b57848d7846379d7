#include "app/failure.h"

#include <iostream>
#include <system_error>

#include "app/printable.h"
#include "host/fixed_text.h"
#include "transfer/error_codes.h"

namespace app {
namespace {

void printField(std::ostream& out, const char* label, const std::string& text) {
    if (!text.empty()) out << "  " << label << printable(text) << '\n';
}

}  // namespace

const char* meaningOf(unsigned int code) {
    switch (code) {
        case transfer::kSuccess:
            return "success";
        case transfer::kPackageExists:
            return "there is a package already, and it is never overwritten";
        case transfer::kDatabaseFailed:
            return "a database could not be opened or written";
        case transfer::kNoTables:
            return "the database lacks the tables of an account";
        case transfer::kNotJson:
            return "a package file is not JSON";
        case transfer::kMissing:
            return "a package, or a file of it, is missing";
        case transfer::kJsonFailed:
            return "the JSON of a message file could not be built";
        case transfer::kWrongVersion:
            return "the version in the package is not the expected one";
        default:
            return "an unknown result";
    }
}

std::string hexCode(unsigned int code) {
    return tools::FixedText<16>("0x%08x", code).text();
}

void printFailure(std::ostream& out, const FailureWords& words) {
    out << "chat-transfer: " << printable(words.what) << ".\n";
    printField(out, "Path:   ", words.path);
    printField(out, "Reason: ", words.reason);
    if (words.code != 0) out << "  Code:   " << hexCode(words.code) << " (" << meaningOf(words.code) << ")\n";
    printField(out, "To do:  ", words.remedy);
}

void warn(const std::string& text) {
    std::cerr << "chat-transfer: warning: " << printable(text) << '\n';
}

std::string systemWords(int error) {
    return std::generic_category().message(error);
}

}  // namespace app
