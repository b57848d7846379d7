// The encrypted per-conversation tree on disk: its folders, the endings of its files and the keys of its notes and
// rooms. Message files and recent-contact files have the keys of package_format.h. docs/formats/tree.md describes the
// format for readers; a test imports the examples from there.
#pragma once

#include <string>

namespace chattransfer {

inline constexpr const char* kTreeFolder = "/qelbackup/";
inline constexpr const char* kTreeAttachmentsFolder = "imfiles/";

inline constexpr const char* kMessageExtension = ".mg";
inline constexpr const char* kContactExtension = ".ct";
inline constexpr const char* kNoteExtension = ".nt";
inline constexpr const char* kRoomExtension = ".rm";

/// What a decrypted copy has behind the whole name of its file.
inline constexpr const char* kDecryptedSuffix = ".decrypt";

inline constexpr const char* kNotesKey = "note";
inline constexpr const char* kRoomsKey = "room";
inline constexpr const char* kRoomMembersKey = "targetID";

/// The tree of `user` in the folder `backup`, ending in "/".
[[nodiscard]] inline std::string treeRoot(const std::string& backup, const std::string& user) {
    return backup + kTreeFolder + user + "/";
}

/// Calls visit(key, field) for each key of a note object. That "isActive" lands in the archive flag is the format's
/// rule.
template <class Record, class Visit>
void forEachNoteKey(Record& record, Visit&& visit) {
    visit("sendUserID", record.sendUserId);
    visit("targetID", record.targetID);
    visit("type", record.type);
    visit("content", record.content);
    visit("isReminder", record.isReminder);
    visit("isActive", record.isArchive);
    visit("rmdTime", record.rmdTime);
    visit("lastChgTime", record.lastChgTime);
}

}  // namespace chattransfer
