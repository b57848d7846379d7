#include "app/tree/tree_files.h"

#include <fcntl.h>

#include <algorithm>
#include <string_view>

#include "app/base/failure.h"
#include "host/cipher/cipher_container.h"
#include "host/cipher/cipher_error.h"
#include "host/files/file_handle.h"
#include "host/files/file_status.h"
#include "host/files/folder_walk.h"
#include "transfer/format/tree_format.h"

namespace app {
namespace {

bool endsWith(std::string_view name, std::string_view ending) {
    return name.size() >= ending.size() && name.substr(name.size() - ending.size()) == ending;
}

bool beginsWith(std::string_view name, std::string_view beginning) {
    return name.substr(0, beginning.size()) == beginning;
}

bool isAttachmentPath(std::string_view name) {
    return beginsWith(name, chattransfer::kTreeAttachmentsFolder);
}

TreeEntryKind kindFrom(tools::FileKind kind) {
    if (kind == tools::FileKind::folder) return TreeEntryKind::folder;
    return kind == tools::FileKind::regular ? TreeEntryKind::file : TreeEntryKind::other;
}

void enter(tools::FolderWalk& walk, TreeListing& listing) {
    if (walk.depth() > kDeepestFolder) {
        listing.unreadable.push_back({walk.name(), "the folders are nested too deeply"});
    } else if (const int error = walk.enter()) {
        listing.unreadable.push_back({walk.name(), systemWords(error)});
    }
}

}  // namespace

TreeListing listTree(const std::string& root) {
    TreeListing listing;
    tools::FolderWalk walk(root, tools::NameOrder::byBytes);
    enter(walk, listing);
    while (walk.next()) {
        const TreeEntryKind kind = kindFrom(walk.status().kind);
        listing.entries.push_back({walk.name(), kind});
        if (kind == TreeEntryKind::folder) enter(walk, listing);
    }
    return listing;
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
    const ssize_t size = file.valid() ? tools::detail::readBlock(file.get(), header.data(), header.size()) : -1;
    if (size < 0) return false;
    try {
        static_cast<void>(cipher::decodeHeader(header, static_cast<std::size_t>(size)));  // throws for other files
        return true;
    } catch (const cipher::Failure&) {
        return false;
    }
}

}  // namespace app
