#include "transfer/attachments/tree_attachments.h"

#include "host/tools.h"
#include "transfer/attachments/attachment_count.h"

namespace chattransfer {
namespace {

std::string asFolder(const std::string& path) {
    return path.empty() || path.back() == '/' ? path : path + "/";
}

tools::ConfinedFolder& userFolderOf(TreeFileKind kind, TreeFileFolders& folders) {
    switch (kind) {
        case TreeFileKind::voice:
            return folders.audio;
        case TreeFileKind::file:
            return folders.file;
        case TreeFileKind::video:
            return folders.video;
        default:
            return folders.image;
    }
}

// Hosts know this limit of the last component: an attachment of a longer name counts as missing.
bool isTooLong(const std::string& value) {
    constexpr std::size_t kNameBuffer = 256;
    std::string name;
    tools::getNameFromPath(value, name);
    return name.size() >= kNameBuffer;
}

tools::FileOutcome moveFile(const TreeFile& file, tools::ConfinedFolder& tree, tools::ConfinedFolder& user) {
    // An empty folder is one that nobody has set: it must not come to mean the working directory.
    if (tree.path().empty() || isTooLong(file.value)) return tools::FileOutcome::missing;
    if (user.path().empty()) return tools::FileOutcome::failed;
    // Voice and files go into folders that the host has made.
    const bool keepsName = file.kind == TreeFileKind::voice || file.kind == TreeFileKind::file;
    if (!keepsName && tree.hasFile(file.value)) {
        const std::size_t slash = file.name.rfind('/');
        user.createFolder(slash == std::string::npos ? "" : file.name.substr(0, slash));
    }
    return tree.moveTo(user, file.value, file.name);
}

}  // namespace

TreeFileFolders::TreeFileFolders(const AttachmentSource& source, const UserFolders& user)
    : tree(attachmentFolder(source)),
      audio(asFolder(user.audio)),
      file(asFolder(user.file)),
      image(asFolder(user.image)),
      video(asFolder(user.video)) {
    for (tools::ConfinedFolder* folder : {&audio, &file, &image, &video})
        folder->rehearse(source.dryRun);
}

int moveTreeFiles(TransferReport& report, TreeFileFolders& folders, const std::string& body, int type,
                  const TreeFileKeys& keys) {
    const bool named = forEachTreeFile(body, type, keys, [&](const TreeFile& file) {
        tools::ConfinedFolder& user = userFolderOf(file.kind, folders);
        const tools::FileKind standing = user.path().empty() ? tools::FileKind::none : user.kindOf(file.name);
        takeUnlessPresent(report, file.value, standing, [&] { return moveFile(file, folders.tree, user); });
    });
    return named ? 1 : 0;
}

}  // namespace chattransfer
