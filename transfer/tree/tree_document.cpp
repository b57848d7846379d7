#include "transfer/tree/tree_document.h"

#include <cerrno>
#include <system_error>

#include "host/files/file_status.h"
#include "host/files/whole_file.h"

namespace chattransfer {
namespace {

std::string whyNotRead(const std::string& path) {
    const tools::FileStatus status = tools::statusOf(path);
    if (status.error == ENOENT) return "is gone";
    if (status.kind != tools::FileKind::regular) return "is not a regular file";
    const int error = tools::readingRefusal(path);
    return error == 0 ? "cannot be read" : "cannot be read: " + std::generic_category().message(error);
}

}  // namespace

bool readTreeText(const std::string& path, std::string& text, TransferReport& report) {
    if (tools::readWholeFile(path, text)) return true;
    report.skip(path, whyNotRead(path));
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
