// Looks into the files of a tree without changing anything in it.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "transfer/records.h"
#include "transfer/transfer_report.h"

namespace app {

/// What a person wants to look into: a tree as an import takes it, or a plain one.
struct TreeSource {
    std::string root;  ///< absolute, without a "/" at its end
    std::string user;  ///< name of the user's folder: the user's own id

    [[nodiscard]] std::string attachments() const;  ///< ends in "/"
};

/// The tree that `folder` means: the user's tree in it, or `folder` itself when it holds a tree directly. Unless a tree
/// is `wanted`, a package in the folder goes first; an empty root says that there is no tree then. Throws Failure.
[[nodiscard]] TreeSource findTreeSource(const std::string& folder, const std::string& user, bool wanted);

/// How many files of one kind there are.
struct TreeFileCounts {
    long long encrypted = 0;
    long long decrypted = 0;  ///< decrypted copies, as an import leaves them
    long long plain = 0;      ///< never encrypted

    [[nodiscard]] long long all() const { return encrypted + decrypted + plain; }
};

struct TreeMessage {
    long long conversation = 0;  ///< the one whose table an import puts it into
    imsdk::st_dbMessageBean record;
};

/// A file of recent contacts; one that cannot be understood has none.
struct TreeContactFile {
    std::string name;  ///< path below the root
    std::vector<imsdk::st_dbReContactBean> contacts;
};

/// What was found besides the messages themselves.
struct TreeFacts {
    std::map<std::string, TreeFileCounts> files;  ///< by ending: ".mg", ".ct", ".nt", ".rm"
    std::map<std::string, int> versions;          ///< how many files say which version; missing ones as "(none)"
    long long locked = 0;                         ///< encrypted files that were not opened, for want of a key
    std::vector<TransferReport::Skipped> unreadable;
    std::vector<TreeContactFile> contactFiles;  ///< by name; tree_contact_files.h tells which of several counts
    std::vector<st_noteTrans> notes;
    std::vector<st_roomTrans> rooms;
};

/// Calls take(message) for every message, file by file. With a key, encrypted files are decrypted one at a time into a
/// private folder; without one they are only counted. A decrypted copy beside an encrypted file that could be read is
/// passed over, since an import replaces it. Ctrl-C ends it between two files: throws Interrupted.
[[nodiscard]] TreeFacts readTree(const TreeSource& source, const std::string& key,
                                 const std::function<void(TreeMessage)>& take);

}  // namespace app
