#include "transfer/tree/tree_document.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "host/files/whole_file.h"

namespace chattransfer {
namespace {

std::string whyNotRead(const char* path) {
    struct stat status {};
    if (lstat(path, &status) != 0 && errno == ENOENT) return "is gone";
    if (!S_ISREG(status.st_mode)) return "is not a regular file";
    if (access(path, R_OK) != 0) return "cannot be read: " + std::generic_category().message(errno);
    return "cannot be read";
}

}  // namespace

bool readTreeText(const std::string& path, std::string& text, TransferReport& report) {
    if (tools::readWholeFile(path, text)) return true;
    report.skip(path, whyNotRead(path.c_str()));
    return false;
}

tools::JsonDocument readTreeFile(const std::string& path, TransferReport& report) {
    std::string text;
    if (!readTreeText(path, text, report)) return nullptr;
    tools::JsonDocument document(json_parse_string(text.c_str()));
    if (!document) report.skip(path, kNotJsonReason);
    return document;
}

void skipOtherVersion(const std::string& path, const std::string& expected, TransferReport& report) {
    report.skip(path, std::string(kOtherVersionReason) + " than " + expected);
}

}  // namespace chattransfer
