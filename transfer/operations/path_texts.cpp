// Texts of paths, as hosts put them together.
#include <algorithm>

#include "host/base/fixed_text.h"
#include "host/tools.h"
#include "transfer/dbTrans.h"
#include "transfer/format/attachment_body.h"

std::string dbTrans::getSavePath(const char* path, std::string& dirPart) {
    dirPart.clear();
    if (path == nullptr) return {};
    // Hosts know the limits of these functions: what passes them gives empty texts.
    const tools::FixedText<256> buffer("%s", path);
    std::string converted = buffer.text();
    std::size_t segment = 0;
    for (int slashes = 0; slashes < 3; ++slashes) {
        const std::size_t slash = converted.find('/', segment);
        if (slash == std::string::npos) return {};
        segment = slash + 1;
    }
    const std::size_t end = converted.find('/', segment);
    // Without a further "/" the segment ends one past the text, so that only one character is taken from it.
    const std::size_t length = (end != std::string::npos ? end : converted.size() + 1) - segment;
    if (length < 2) return {};
    const tools::FixedText<50> directory("%s", converted.substr(segment, length - 2).c_str());
    if (!directory.fits()) return {};
    dirPart = directory.text();
    std::replace(converted.begin(), converted.end(), '/', '_');
    return dirPart + "/" + converted;
}

std::string dbTrans::baseName(std::string path) {
    return chattransfer::folderOf(path);
}

std::string dbTrans::filName(std::string path) {
    std::string name;
    tools::getNameFromPath(path, name);
    return name;
}

std::string dbTrans::validatePath(const char* path) {
    if (path == nullptr) return {};
    std::string valid = tools::FixedText<300>("%s", path).text();
    std::replace(valid.begin(), valid.end(), '\\', '/');
    if (!valid.empty() && valid.back() == '/') valid.pop_back();
    return valid;
}
