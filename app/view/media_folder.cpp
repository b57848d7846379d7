#include "app/view/media_folder.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace app::view {
namespace {

// Neither pages (html, xhtml, svg, xml, mht) nor programs nor scripts.
constexpr std::string_view kSafeEndings[] = {
    "png", "jpg",  "jpeg", "gif",  "webp", "bmp", "avif", "heic", "tif", "tiff", "wav",  "mp3",  "ogg",
    "oga", "opus", "m4a",  "aac",  "amr",  "3ga", "flac", "weba", "mp4", "m4v",  "webm", "mov",  "ogv",
    "3gp", "mkv",  "avi",  "pdf",  "txt",  "csv", "doc",  "docx", "xls", "xlsx", "ppt",  "pptx", "odt",
    "ods", "odp",  "rtf",  "epub", "zip",  "gz",  "bz2",  "xz",   "7z",  "rar",  "tar"};

char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// What stands behind the last dot of the last component, in small letters.
std::string endingOf(const std::string& path) {
    const std::string name = path.substr(path.rfind('/') + 1);
    const std::size_t dot = name.rfind('.');
    std::string ending = dot == std::string::npos ? "" : name.substr(dot + 1);
    std::transform(ending.begin(), ending.end(), ending.begin(), lowered);
    return ending;
}

}  // namespace

std::string MediaFolder::copyOf(const NamedFile& file) {
    const auto known = names_.find(file.source);
    if (known != names_.end()) return known->second;
    return names_.emplace(file.source, copy(file)).first->second;
}

std::string MediaFolder::copy(const NamedFile& file) {
    std::string name = std::to_string(counts_.copied + 1) + safeEnding(file);
    switch (source_.copyTo(target_, file.source, name, tools::Flush::later)) {
        case tools::FileOutcome::done:
            ++counts_.copied;
            return name;
        case tools::FileOutcome::missing:
            ++counts_.missing;
            break;
        case tools::FileOutcome::refused:
            ++counts_.refused;
            break;
        case tools::FileOutcome::failed:
            ++counts_.failed;
            break;
    }
    return "";
}

std::string safeEnding(const NamedFile& file) {
    const std::string ending = endingOf(file.source);
    const bool safe = std::find(std::begin(kSafeEndings), std::end(kSafeEndings), ending) != std::end(kSafeEndings);
    return safe ? "." + ending : ".bin";
}

}  // namespace app::view
