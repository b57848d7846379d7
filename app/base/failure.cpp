#include "app/base/failure.h"

#include <cerrno>
#include <iostream>
#include <system_error>

#include "app/base/printable.h"
#include "host/base/fixed_text.h"
#include "transfer/error_codes.h"

namespace app {
namespace {

void printField(std::ostream& out, const char* label, const std::string& text) {
    if (!text.empty()) out << "  " << label << printable(text) << '\n';
}

}  // namespace

std::string hexCode(unsigned int code) {
    return tools::FixedText<16>("0x%08x", code).text();
}

void printFailure(std::ostream& out, const FailureWords& words) {
    out << "chat-transfer: " << printable(words.what) << ".\n";
    printField(out, "Path:   ", words.path);
    printField(out, "Reason: ", words.reason);
    if (words.code != 0)
        out << "  Code:   " << hexCode(words.code) << " (" << chattransfer::meaningOf(words.code) << ")\n";
    printField(out, "To do:  ", words.remedy);
}

void warn(const std::string& text) {
    std::cerr << "chat-transfer: warning: " << printable(text) << '\n';
}

std::string systemWords(int error) {
    return std::generic_category().message(error);
}

void failToWrite(const std::string& path, const std::string& what) {
    throw Failure({0, what, path, systemWords(errno), kCheckThePlace});
}

}  // namespace app
