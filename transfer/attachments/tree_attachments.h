// Moving the attachments of a tree into the user's folders.
#pragma once

#include <string>

#include "host/files/confined_files.h"
#include "transfer/attachments/backup_place.h"
#include "transfer/format/tree_body.h"
#include "transfer/transfer_report.h"

namespace chattransfer {

/// The user's folders. An empty path stands for one that nobody has set.
struct UserFolders {
    const std::string& audio;
    const std::string& file;
    const std::string& image;
    const std::string& video;
};

/// The tree's folder of attachments and the user's, open for one loop over messages or notes.
struct TreeFileFolders {
    TreeFileFolders(const AttachmentSource& source, const UserFolders& user);

    tools::ConfinedFolder tree;
    tools::ConfinedFolder audio;
    tools::ConfinedFolder file;
    tools::ConfinedFolder image;
    tools::ConfinedFolder video;
};

/// Moves the files that `body` names from the tree into the user's folders; what stands there already stays. 1 when the
/// type carries files and the body is JSON, else 0. The report counts the files.
[[nodiscard]] int moveTreeFiles(TransferReport& report, TreeFileFolders& folders, const std::string& body, int type,
                                const TreeFileKeys& keys);

}  // namespace chattransfer
