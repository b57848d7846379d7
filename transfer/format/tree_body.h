// The files that the body of a message, or the content of a note, names in a tree, and what an account calls them.
#pragma once

#include <functional>
#include <string>

namespace chattransfer {

/// Types beyond those of attachment_body.h that carry files in a tree.
inline constexpr int kPicturesMessage = 28;
inline constexpr int kVideoMessage = 89;

[[nodiscard]] bool carriesTreeFiles(int type);

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

enum class TreeFileKind { voice, file, image, thumbnail, preview, video };

/// One file that a body names.
struct TreeFile {
    TreeFileKind kind;
    std::string value;  ///< as the body has it: the name beneath the tree's attachment folder; never empty
    std::string
        name;  ///< the name in the folder of the account; it may have folders of its own, but for voice and files
};

/// The folder of the account for files of the kind: kAudioFolder or one of its siblings.
[[nodiscard]] const char* accountFolderOf(TreeFileKind kind);

/// Calls visit(file) for each file that the body names. False, without a call, when the type carries no files or the
/// body is no JSON.
[[nodiscard]] bool forEachTreeFile(const std::string& body, int type, const TreeFileKeys& keys,
                                   const std::function<void(const TreeFile&)>& visit);

}  // namespace chattransfer
