#include "transfer/tree/tree_walk.h"

#include <dirent.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <system_error>
#include <utility>

#include "host/CAES.h"
#include "transfer/format/tree_format.h"

namespace chattransfer {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};
using FolderHandle = std::unique_ptr<DIR, CloseFolder>;

bool isDotEntry(const std::string& name) {
    return name == "." || name == "..";
}

// Hands each entry but "." and ".." to take(). 0, or the error that ended the listing.
template <class Take>
int forEachEntry(const std::string& folder, Take take) {
    const FolderHandle handle(opendir(folder.c_str()));
    if (!handle) return errno;
    for (;;) {
        errno = 0;
        const dirent* entry = readdir(handle.get());
        if (entry == nullptr) return errno;
        if (!isDotEntry(entry->d_name)) take(*entry);
    }
}

// What is not there holds nothing; what cannot be read may hold something.
void noteUnreadable(TransferReport& report, const std::string& path, const std::string& whatFor, int error) {
    if (error == 0 || error == ENOENT) return;
    report.skip(path, "cannot be searched for " + whatFor + ": " + std::generic_category().message(error));
}

std::string join(const std::string& folder, const std::string& name) {
    std::string path = folder;
    path += '/';
    return path += name;
}

bool endsWith(const std::string& name, const std::string& ending) {
    return name.size() >= ending.size() && name.compare(name.size() - ending.size(), ending.size(), ending) == 0;
}

/// One folder on the way down: its names, read at once, and how far the walk has come.
///
/// Reading them at once keeps files that the walk itself creates and removes out of its sight, and needs one open
/// folder however deep the tree is.
struct Level {
    std::string folder;
    std::vector<std::string> names;
    std::size_t next = 0;
};

class TreeWalk {
public:
    TreeWalk(const TreeSearch& search, std::vector<std::string>& paths, TransferReport& report)
        : search_(search), decryptedEnding_(search.extension + kDecryptedSuffix), paths_(paths), report_(report) {}

    // A list of levels instead of recursion: a tree of a stranger must not choose how much stack is used.
    void run(const std::string& folder) {
        enter(folder);
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.names.size()) {
                levels_.pop_back();
            } else {
                const std::string name = std::move(level.names[level.next++]);
                visit(join(level.folder, name), name);
            }
        }
    }

private:
    void enter(const std::string& folder) {
        Level level{folder, {}, 0};
        const int error = forEachEntry(folder, [&](const dirent& entry) { level.names.emplace_back(entry.d_name); });
        noteUnreadable(report_, folder, search_.extension + " files", error);
        levels_.push_back(std::move(level));
    }

    void visit(const std::string& path, const std::string& name) {
        struct stat status {};
        if (lstat(path.c_str(), &status) != 0) {
            noteUnreadable(report_, path, search_.extension + " files", errno);
        } else if (S_ISDIR(status.st_mode)) {
            enter(path);
        } else if (endsWith(name, decryptedEnding_)) {
            paths_.push_back(path);
        } else if (endsWith(name, search_.extension)) {
            decrypt(path);
        }
    }

    void decrypt(const std::string& source) {
        const std::string target = source + kDecryptedSuffix;
        std::array<char, 256> error{};
        CAES cipher;
        if (cipher.File_Aes_Go_Block(false, search_.key.c_str(), source.c_str(), target.c_str(), error.data()) != 0) {
            report_.skip(source, std::string("cannot be decrypted: ") + error.data());
            return;
        }
        static_cast<void>(std::remove(source.c_str()));
        paths_.push_back(target);
    }

    const TreeSearch& search_;
    const std::string decryptedEnding_;
    std::vector<std::string>& paths_;
    TransferReport& report_;
    std::vector<Level> levels_;
};

}  // namespace

void listTreeFiles(const std::string& folder, const TreeSearch& search, std::vector<std::string>& paths,
                   TransferReport& report) {
    // With an extension of another length, names would be compared with a part of it only: files that nobody asked for
    // would be decrypted and their originals removed.
    constexpr std::size_t kExtensionSize = 3;
    if (search.extension.size() == kExtensionSize) TreeWalk(search, paths, report).run(folder);
}

void listSubfolders(const std::string& folder, std::vector<std::string>& paths, TransferReport& report) {
    const int error = forEachEntry(folder, [&](const dirent& entry) {
        if (entry.d_type == DT_DIR) paths.push_back(join(folder, entry.d_name));
    });
    noteUnreadable(report, folder, "folders", error);
}

long long conversationOfPath(const std::string& path) {
    constexpr const char* kDigits = "0123456789";
    const std::size_t slash = path.rfind('/');
    const std::size_t separator = slash != std::string::npos ? slash : path.rfind('\\');
    if (separator == std::string::npos || separator == 0) return kNoConversation;
    const std::size_t last = path.find_last_of(kDigits, separator - 1);
    if (last == std::string::npos) return kNoConversation;
    const std::size_t before = path.find_last_not_of(kDigits, last);
    if (before == std::string::npos) return kNoConversation;
    return std::strtoll(path.c_str() + before + 1, nullptr, 10);
}

}  // namespace chattransfer
