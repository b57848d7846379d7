#include "host/files/folder_walk.h"

#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <utility>

namespace tools {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

// 0, or the error that ended the listing.
int appendNames(const std::string& folder, std::vector<std::string>& names) {
    const std::unique_ptr<DIR, CloseFolder> handle(opendir(folder.c_str()));
    if (!handle) return errno;
    for (;;) {
        errno = 0;
        const dirent* entry = readdir(handle.get());
        if (entry == nullptr) return errno;
        std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(std::move(name));
    }
}

}  // namespace

FolderNames namesIn(const std::string& folder, NameOrder order) {
    FolderNames found;
    found.error = appendNames(folder, found.names);
    if (order == NameOrder::byBytes) std::sort(found.names.begin(), found.names.end());
    return found;
}

FolderWalk::FolderWalk(std::string root, NameOrder order) : root_(std::move(root)), order_(order), path_(root_) {}

int FolderWalk::enter() {
    FolderNames found = namesIn(path_, order_);
    levels_.push_back({name_.empty() ? "" : name_ + "/", std::move(found.names), 0});
    return found.error;
}

bool FolderWalk::next() {
    while (!levels_.empty() && levels_.back().next == levels_.back().names.size())
        levels_.pop_back();
    if (levels_.empty()) return false;
    Level& level = levels_.back();
    name_ = level.prefix + level.names[level.next++];
    path_ = root_ + "/" + name_;
    status_ = statusOf(path_);
    return true;
}

std::string_view FolderWalk::fileName() const {
    return std::string_view(name_).substr(name_.rfind('/') + 1);
}

}  // namespace tools
