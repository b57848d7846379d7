// The functions that make names out of foreign texts: what they give is a valid name that is not too long, and the
// parts of a path make the path again.
#include <algorithm>

#include "fuzz/property.h"
#include "host/files/confined_files.h"
#include "host/tools.h"
#include "transfer/dbTrans.h"

namespace {

using fuzz::require;

bool isPlainName(const std::string& name) {
    const bool printable =
        std::all_of(name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x20 && c != '/'; });
    return printable && name != "." && name != "..";
}

void checkUniqueName(const std::string& url) {
    for (const bool unique : {false, true}) {
        const std::string name = tools::getUniqueNameByUrl(url, unique);
        require(name == tools::getUniqueNameByUrl(url, unique), "equal texts give equal names");
        require(name.size() <= 255, "a name fits a directory entry");
        require(name.empty() || (isPlainName(name) && tools::isConfinedName(name)), "a name stays in its folder");
        require(!unique || !name.empty(), "every text has a name of its own");
    }
}

void checkSavePath(dbTrans& transfer, const std::string& path) {
    std::string directory;
    const std::string saved = transfer.getSavePath(path.c_str(), directory);
    require(!saved.empty() || directory.empty(), "a directory part comes with a saved path");
    require(directory.size() <= 49, "a directory part is not too long");
    require(saved.compare(0, directory.size(), directory) == 0, "the saved path begins with its directory part");
    require(std::count(saved.begin(), saved.end(), '/') <= 1, "the rest of a saved path is one name");
}

void checkParts(dbTrans& transfer, const std::string& path) {
    const std::string name = transfer.filName(path);
    if (path.find('/') != std::string::npos) {
        require(transfer.baseName(path) + "/" + name == path, "the parts of a path make the path");
    } else {
        require(transfer.baseName(path) == path && name == path, "a path without a separator is its own part");
    }
    const std::string valid = transfer.validatePath(path.c_str());
    require(valid.find('\\') == std::string::npos && valid.size() <= 299, "a validated path has one kind of separator");
}

void checkConversation(dbTrans& transfer, std::string path) {
    require(transfer.getTargetIDFromePath(path) >= -1, "a conversation's number is not negative");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static dbTrans transfer;
    const std::string text(reinterpret_cast<const char*>(data), size);
    checkUniqueName(text);
    checkSavePath(transfer, text);
    checkParts(transfer, text);
    checkConversation(transfer, text);
    return 0;
}
