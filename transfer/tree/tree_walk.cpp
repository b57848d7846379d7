#include "transfer/tree/tree_walk.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/CAES.h"
#include "host/files/file_status.h"
#include "host/files/folder_walk.h"
#include "transfer/format/tree_format.h"

namespace chattransfer {
namespace {

// What is not there holds nothing; what cannot be read may hold something.
void noteUnreadable(TransferReport& report, const std::string& path, const std::string& whatFor, int error) {
    if (error == 0 || error == ENOENT) return;
    report.skip(path, Omission::folderNotSearched, whatFor + ": " + std::generic_category().message(error));
}

bool endsWith(std::string_view name, std::string_view ending) {
    return name.size() >= ending.size() && name.substr(name.size() - ending.size()) == ending;
}

class TreeWalk {
public:
    TreeWalk(const TreeSearch& search, std::vector<std::string>& paths, TransferReport& report)
        : search_(search), decryptedEnding_(search.extension + kDecryptedSuffix), paths_(paths), report_(report) {}

    void run(const std::string& folder) {
        tools::FolderWalk walk(folder);
        enter(walk);
        while (walk.next())
            visit(walk);
    }

private:
    void enter(tools::FolderWalk& walk) {
        noteUnreadable(report_, walk.path(), search_.extension + " files", walk.enter());
    }

    void visit(tools::FolderWalk& walk) {
        const std::string& path = walk.path();
        if (walk.status().error != 0) {
            noteUnreadable(report_, path, search_.extension + " files", walk.status().error);
        } else if (walk.status().kind == tools::FileKind::folder) {
            enter(walk);
        } else if (endsWith(walk.fileName(), decryptedEnding_)) {
            paths_.push_back(path);
        } else if (endsWith(walk.fileName(), search_.extension)) {
            decrypt(path);
        }
    }

    void decrypt(const std::string& source) {
        const std::string target = source + kDecryptedSuffix;
        std::array<char, 256> error{};
        CAES cipher;
        if (cipher.File_Aes_Go_Block(false, search_.key.c_str(), source.c_str(), target.c_str(), error.data()) != 0) {
            report_.skip(source, Omission::treeFileUndecryptable, error.data());
            return;
        }
        static_cast<void>(tools::removeFile(source));
        paths_.push_back(target);
    }

    const TreeSearch& search_;
    const std::string decryptedEnding_;
    std::vector<std::string>& paths_;
    TransferReport& report_;
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
    const tools::FolderNames found = tools::namesIn(folder);
    for (const std::string& name : found.names) {
        std::string path = folder;
        path.append("/").append(name);
        const tools::FileStatus status = tools::statusOf(path);
        noteUnreadable(report, path, "folders", status.error);
        if (status.kind == tools::FileKind::folder) paths.push_back(std::move(path));
    }
    noteUnreadable(report, folder, "folders", found.error);
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
