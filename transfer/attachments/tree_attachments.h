// Moving the attachments of a tree into the user's folders: which keys of a message body or a note's content name
// files, and where each of them goes.
#pragma once

#include <string>

#include "host/files/confined_files.h"
#include "transfer/dbTrans.h"

namespace chattransfer {

/// Types beyond those of attachment_body.h that carry files in a tree.
inline constexpr int kPicturesMessage = 28;
inline constexpr int kVideoMessage = 89;

bool carriesTreeFiles(int type);

/// The keys under which a body names its files, by type.
struct TreeFileKeys {
    const char* voice;
    const char* file;
    const char* image;
    const char* thumbnail;
    const char* pictures;  ///< a list of objects with `image` and `thumbnail`
    const char* preview;
    const char* video;
};

inline constexpr TreeFileKeys kMessageFileKeys{"mediaUrl",  "mediaUrl",   "mediaUrl",     "thumbUrl",
                                               "serverUrl", "preImgPath", "videoFileName"};
inline constexpr TreeFileKeys kNoteFileKeys{"mediaUrl", "url", "mainUrl", "thumbUrl", "nine", "preImgUrl", "fileUrl"};

/// The tree's folder of attachments and the user's, open for one loop over messages or notes. An empty path stands for
/// one that nobody has set.
struct TreeFileFolders {
    explicit TreeFileFolders(const dbTrans& transfer);

    tools::ConfinedFolder tree;
    tools::ConfinedFolder audio;
    tools::ConfinedFolder file;
    tools::ConfinedFolder image;
    tools::ConfinedFolder video;
};

/// Moves the files that `body` names from the tree into the user's folders; what stands there already stays. 1 when the
/// type carries files and the body is JSON, else 0. The report counts the files.
int moveTreeFiles(TransferReport& report, TreeFileFolders& folders, const std::string& body, int type,
                  const TreeFileKeys& keys);

}  // namespace chattransfer
