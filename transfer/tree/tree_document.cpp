#include "transfer/tree/tree_document.h"

#include <cerrno>
#include <system_error>

#include "host/files/file_status.h"
#include "host/files/whole_file.h"

namespace chattransfer {
namespace {

void skipUnread(const std::string& path, TransferReport& report) {
    const tools::FileStatus status = tools::statusOf(path);
    if (status.error == ENOENT) return report.skip(path, Omission::treeFileMissing);
    if (status.kind != tools::FileKind::regular) return report.skip(path, Omission::treeFileIrregular);
    const int error = tools::readingRefusal(path);
    report.skip(path, Omission::treeFileUnreadable, error == 0 ? "" : std::generic_category().message(error));
}

}  // namespace

bool readTreeText(const std::string& path, std::string& text, TransferReport& report) {
    if (tools::readWholeFile(path, text)) return true;
    skipUnread(path, report);
    return false;
}

tools::JsonDocument readTreeFile(const std::string& path, TransferReport& report) {
    std::string text;
    if (!readTreeText(path, text, report)) return nullptr;
    tools::JsonDocument document(json_parse_string(text.c_str()));
    if (!document) report.skip(path, Omission::treeFileNotJson);
    return document;
}

}  // namespace chattransfer
