// Files named by foreign text, kept inside one folder.
//
// Attachment names come from message bodies and packages, that is from strangers. A name is resolved beneath a folder
// that the user chose, component by component, and no symbolic link is followed on the way: what would lead outside is
// simply not there. The folder itself may be reached through links; that is the user's own choice.
#pragma once

#include <string>

#include "host/flush.h"

namespace tools {

/// True when `name`, appended to a folder, cannot name anything outside it: it is not empty, has no ".." component, no
/// NUL, and no component longer than 255 bytes. A leading "/" or a text such as "http://host/a" is fine: names are
/// appended, not resolved, and empty components count for nothing.
bool isConfinedName(const std::string& name);

/// True when `folder` + `name` is a regular file that can be reached without following a symbolic link beneath
/// `folder`.
bool confinedFileExists(const std::string& folder, const std::string& name);

/// True when `folder` + `name` is a directory that can be reached without following a symbolic link beneath `folder`.
bool confinedFolderExists(const std::string& folder, const std::string& name);

/// True when anything at all stands at `folder` + `name`, a symbolic link included, or when the name is not confined:
/// in both cases nothing may be put there.
bool confinedNameTaken(const std::string& folder, const std::string& name);

/// True when something is seen to stand at `folder` + `name`. Where nobody can look (a link on the way, an input/output
/// error) it is false, and a copy there says why it fails.
bool confinedNameSeen(const std::string& folder, const std::string& name);

/// What became of a confined copy or move.
enum class FileOutcome {
    done,     ///< the target holds the file
    missing,  ///< there is no such source
    refused,  ///< a name leads outside its folder or over a symbolic link, or the source is no regular file
    failed,   ///< the source could not be read, or the target not be written
};

/// Copies the regular file `fromFolder` + `from` to `toFolder` + `to`, replacing an existing file, by the rules of
/// copyFile(). Folders of `to` that are missing are not created.
FileOutcome copyConfined(const std::string& fromFolder, const std::string& from, const std::string& toFolder,
                         const std::string& to, Flush flush = Flush::now);

/// Moves it instead, by the rules of moveFile().
FileOutcome moveConfined(const std::string& fromFolder, const std::string& from, const std::string& toFolder,
                         const std::string& to);

/// Creates the folder `folder` + `name` with its missing parents, `folder` itself included; 0 when it is there
/// afterwards, -1 when the name is not confined, crosses a symbolic link or cannot be created.
int createConfinedDir(const std::string& folder, const std::string& name);

/// Reads all of the regular file `name`; false when it is missing, no regular file, or cannot be read.
bool readConfined(const std::string& folder, const std::string& name, std::string& bytes);

}  // namespace tools
