#include "transfer/tree_document.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "transfer/json_fields.h"

namespace transfer {
namespace {

std::string whyNotParsed(const char* path) {
    struct stat status {};
    if (lstat(path, &status) != 0 && errno == ENOENT) return "is gone";
    if (!S_ISREG(status.st_mode)) return "is not a regular file";
    if (access(path, R_OK) != 0) return "cannot be read: " + std::generic_category().message(errno);
    return "is not JSON";
}

}  // namespace

tools::JsonDocument readTreeFile(const std::string& path, TransferReport& report) {
    tools::JsonDocument document(json_parse_file_no_link(path.c_str()));
    if (!document) report.skip(path, whyNotParsed(path.c_str()));
    return document;
}

bool hasTreeVersion(const JSON_Value* document, const std::string& version, const std::string& path,
                    TransferReport& report) {
    if (hasVersion(json_value_get_object(document), version)) return true;
    report.skip(path, "has another version than " + version);
    return false;
}

}  // namespace transfer
