// Reading the note and room files of a tree.
#pragma once

#include <string>
#include <vector>

#include "host/json.h"
#include "transfer/error_codes.h"
#include "transfer/format/json_fields.h"
#include "transfer/format/tree_format.h"
#include "transfer/records.h"
#include "transfer/transfer_report.h"
#include "transfer/tree/tree_document.h"
#include "transfer/tree/tree_walk.h"

namespace chattransfer {

[[nodiscard]] st_noteTrans readNote(const JSON_Object* object);

/// The members stand in the record in reverse order of the file, as clients store them.
[[nodiscard]] st_roomTrans readRoom(const JSON_Object* object);

/// A user's tree.
struct UserTree {
    std::string root;            ///< ending in "/"
    const std::string& key;      ///< key text of its encrypted files
    const std::string& version;  ///< what its files must have
};

/// What sets note files and room files apart.
template <class Record>
struct TreeRecords {
    const char* extension;
    const char* listKey;
    Record (*read)(const JSON_Object* object);
};

inline constexpr TreeRecords<st_noteTrans> kNoteFiles{kNoteExtension, kNotesKey, readNote};
inline constexpr TreeRecords<st_roomTrans> kRoomFiles{kRoomExtension, kRoomsKey, readRoom};

/// Replaces `records` by those of all files of the kind in a user's tree, each file's list from its last element to
/// its first: clients number rows as they are inserted and show the highest number first. Calls taken(record) before
/// each is appended. kSuccess, or kWrongVersion at the first file of another version; the records of earlier files stay
/// then.
template <class Record, class Taken>
[[nodiscard]] ErrorCode readTreeRecords(const UserTree& tree, const TreeRecords<Record>& kind, TransferReport& report,
                                        std::vector<Record>& records, Taken taken) {
    std::vector<std::string> paths;
    listTreeFiles(tree.root, {kind.extension, tree.key}, paths, report);
    records.clear();
    for (const std::string& path : paths) {
        const tools::JsonDocument document = readTreeFile(path, report);
        if (!document) continue;
        const JSON_Object* file = json_value_get_object(document.get());
        if (!hasVersion(file, tree.version)) {
            report.skip(path, Omission::treeFileOtherVersion, tree.version);
            return kWrongVersion;
        }
        const JSON_Array* list = json_object_get_array(file, kind.listKey);
        for (size_t i = json_array_get_count(list); i-- > 0;) {
            const JSON_Object* object = json_array_get_object(list, i);
            if (object == nullptr) continue;
            records.push_back(kind.read(object));
            taken(records.back());
        }
    }
    return kSuccess;
}

}  // namespace chattransfer
