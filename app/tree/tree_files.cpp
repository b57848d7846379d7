#include "app/tree/tree_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string_view>
#include <utility>

#include "app/base/failure.h"
#include "host/cipher/cipher_container.h"
#include "host/cipher/cipher_error.h"
#include "host/files/file_handle.h"
#include "transfer/format/tree_format.h"

namespace app {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

bool endsWith(std::string_view name, std::string_view ending) {
    return name.size() >= ending.size() && name.substr(name.size() - ending.size()) == ending;
}

bool beginsWith(std::string_view name, std::string_view beginning) {
    return name.substr(0, beginning.size()) == beginning;
}

bool isAttachmentPath(std::string_view name) {
    return beginsWith(name, chattransfer::kTreeAttachmentsFolder);
}

TreeEntryKind kindOf(const std::string& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) return TreeEntryKind::other;
    if (S_ISDIR(status.st_mode)) return TreeEntryKind::folder;
    return S_ISREG(status.st_mode) ? TreeEntryKind::file : TreeEntryKind::other;
}

// One folder on the way down: its names, read at once, and how far the walk has come.
struct Level {
    std::string prefix;  // the folder's path below the root, with a "/" behind it
    std::vector<std::string> names;
    std::size_t next = 0;
};

// A list of levels instead of recursion: a stranger's tree must not choose how much stack is used.
class Walk {
public:
    explicit Walk(std::string root) : root_(std::move(root)) {}

    TreeListing run() {
        enter("");
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.names.size()) {
                levels_.pop_back();
            } else {
                visit(level.prefix + level.names[level.next++]);
            }
        }
        return std::move(listing_);
    }

private:
    void visit(const std::string& name) {
        const TreeEntryKind kind = kindOf(root_ + "/" + name);
        listing_.entries.push_back({name, kind});
        if (kind == TreeEntryKind::folder) enter(name);
    }

    void enter(const std::string& name) {
        if (levels_.size() > kDeepestFolder) {
            listing_.unreadable.push_back({name, "the folders are nested too deeply"});
            return;
        }
        const std::unique_ptr<DIR, CloseFolder> folder(opendir((root_ + "/" + name).c_str()));
        if (!folder) {
            listing_.unreadable.push_back({name, systemWords(errno)});
            return;
        }
        Level level{name.empty() ? "" : name + "/", {}, 0};
        while (const dirent* entry = readdir(folder.get())) {
            std::string found = entry->d_name;
            if (found != "." && found != "..") level.names.push_back(std::move(found));
        }
        std::sort(level.names.begin(), level.names.end());
        levels_.push_back(std::move(level));
    }

    const std::string root_;
    TreeListing listing_;
    std::vector<Level> levels_;
};

}  // namespace

TreeListing listTree(const std::string& root) {
    return Walk(root).run();
}

bool hasRecordEnding(std::string_view name) {
    const auto endings = {chattransfer::kMessageExtension, chattransfer::kContactExtension,
                          chattransfer::kNoteExtension, chattransfer::kRoomExtension};
    return std::any_of(endings.begin(), endings.end(), [name](const char* ending) { return endsWith(name, ending); });
}

bool hasDecryptedEnding(std::string_view name) {
    return endsWith(name, chattransfer::kDecryptedSuffix);
}

bool isRecordFile(const std::string& name) {
    return hasRecordEnding(name) && !isAttachmentPath(name);
}

bool isDecryptedCopy(const std::string& name) {
    return hasDecryptedEnding(name) && isRecordFile(nameWithoutDecrypted(name));
}

std::string nameWithoutDecrypted(const std::string& name) {
    return name.substr(0, name.size() - std::string_view(chattransfer::kDecryptedSuffix).size());
}

bool isEncrypted(const std::string& path) {
    const tools::detail::FileHandle file = tools::detail::openRegularFile(AT_FDCWD, path.c_str(), false);
    cipher::HeaderBytes header{};
    const ssize_t size = file.valid() ? read(file.get(), header.data(), header.size()) : -1;
    if (size < 0) return false;
    try {
        cipher::decodeHeader(header, static_cast<std::size_t>(size));
        return true;
    } catch (const cipher::Failure&) {
        return false;
    }
}

bool isCipherLeftover(const std::string& name) {
    constexpr std::size_t kHexDigits = 16;
    constexpr std::string_view kBegin = ".caes-";
    constexpr std::string_view kEnd = ".part";
    const std::string_view last = std::string_view(name).substr(name.rfind('/') + 1);
    return last.size() == kBegin.size() + kHexDigits + kEnd.size() && beginsWith(last, kBegin) && endsWith(last, kEnd);
}

}  // namespace app
