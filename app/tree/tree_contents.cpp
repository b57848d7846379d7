#include "app/tree/tree_contents.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "app/base/file_version.h"
#include "app/base/interruption.h"
#include "app/base/paths.h"
#include "app/places/private_folder.h"
#include "app/places/tree_place.h"
#include "app/tree/tree_files.h"
#include "host/CAES.h"
#include "host/files/folder_walk.h"
#include "host/files/whole_file.h"
#include "host/json/json_owner.h"
#include "host/tools.h"
#include "transfer/format/json_fields.h"
#include "transfer/format/message_text.h"
#include "transfer/format/package_format.h"
#include "transfer/format/tree_format.h"
#include "transfer/tables/recent_contact_table.h"
#include "transfer/tree/tree_records.h"
#include "transfer/tree/tree_walk.h"

namespace app {
namespace {

namespace fs = std::filesystem;
using chattransfer::Omission;
using tools::JsonDocument;

std::string endingOf(const std::string& name) {
    return name.substr(name.rfind('.'));
}

// True for a folder that holds a tree directly: attachments, or a record file.
bool looksLikeTree(const fs::path& folder) {
    if (isFolder(folder / chattransfer::kTreeAttachmentsFolder)) return true;
    const std::vector<std::string> names = tools::namesIn(folder.string()).names;
    return std::any_of(names.begin(), names.end(),
                       [](const std::string& name) { return isRecordFile(name) || isDecryptedCopy(name); });
}

const char* listKeyOf(const std::string& ending) {
    if (ending == chattransfer::kContactExtension) return chattransfer::kRecentContactsKey;
    return ending == chattransfer::kNoteExtension ? chattransfer::kNotesKey : chattransfer::kRoomsKey;
}

class TreeContentsReader {
public:
    TreeContentsReader(const TreeSource& source, const std::string& key, const std::function<void(TreeMessage)>& take)
        : source_(source), key_(key), take_(take), ownId_(tools::atoint64(source.user.c_str())) {}

    TreeFacts run() {
        const TreeListing listing = listTree(source_.root);
        for (const UnreadableFolder& folder : listing.unreadable)
            leaveOut(folder.name, Omission::folderUnreadable, folder.reason);
        // A record file stands before its decrypted copy.
        for (const TreeEntry& entry : listing.entries) {
            leaveIfInterrupted();
            if (isRecordFile(entry.name) && entry.kind != TreeEntryKind::folder) takeRecordFile(entry);
            if (isDecryptedCopy(entry.name) && entry.kind == TreeEntryKind::file) takeCopy(entry.name);
        }
        return std::move(facts_);
    }

private:
    std::string pathOf(const std::string& name) const { return source_.root + "/" + name; }

    void leaveOut(const std::string& name, Omission kind, std::string_view detail = {}) {
        facts_.unreadable.push_back(TransferReport::Skipped::of(name.empty() ? source_.root : name, kind, detail));
    }

    void takeRecordFile(const TreeEntry& entry) {
        if (entry.kind != TreeEntryKind::file) {
            leaveOut(entry.name, Omission::treeFileIrregular);
            return;
        }
        TreeFileCounts& counts = facts_.files[endingOf(entry.name)];
        if (!isEncrypted(pathOf(entry.name))) {
            ++counts.plain;
            takeText(entry.name, entry.name, pathOf(entry.name));
            return;
        }
        ++counts.encrypted;
        if (key_.empty()) {
            ++facts_.locked;
        } else {
            takeEncrypted(entry.name);
        }
    }

    void takeEncrypted(const std::string& name) {
        if (!folder_) folder_.emplace();
        const std::string text = folder_->path() + "/text";
        std::array<char, 256> error{};
        CAES cipher;
        if (cipher.File_Aes_Go_Block(false, key_.c_str(), pathOf(name).c_str(), text.c_str(), error.data()) != 0) {
            leaveOut(name, Omission::treeFileUndecryptable, error.data());
            return;
        }
        opened_.insert(name);
        takeText(name, name, text);
    }

    void takeCopy(const std::string& name) {
        const std::string original = nameWithoutDecrypted(name);
        ++facts_.files[endingOf(original)].decrypted;
        if (opened_.count(original) == 0) takeText(name, original, pathOf(name));
    }

    // `name` is what the file is called in the tree, `original` that name when it is no copy.
    void takeText(const std::string& name, const std::string& original, const std::string& path) {
        if (endingOf(original) == chattransfer::kContactExtension) facts_.contactFiles.push_back({name, {}});
        if (endingOf(original) == chattransfer::kMessageExtension) {
            takeMessages(name, path);
        } else {
            takeRecords(name, endingOf(original), path);
        }
    }

    // Where a plain tree lies says nothing: the conversation is that of the place where an import finds the file.
    void takeMessages(const std::string& name, const std::string& path) {
        std::string text;
        chattransfer::MessageFileContent file;
        if (tools::readWholeFile(path, text)) file = chattransfer::readMessageFileText(text);
        if (!isOfFormat(name, file.isObject, file.version.value_or(kNoVersion), file.hasDays)) return;
        const long long conversation =
            chattransfer::conversationOfPath(chattransfer::kTreeFolder + source_.user + "/" + name);
        if (conversation == chattransfer::kNoConversation) {
            leaveOut(name, Omission::treeFileWithoutConversation);
            return;
        }
        for (chattransfer::MessageDay& day : file.days) {
            for (imsdk::st_dbMessageBean& message : day.messages)
                takeMessage(conversation, message);
        }
    }

    void takeMessage(long long conversation, imsdk::st_dbMessageBean& message) {
        message.targetID = message.toUserID == ownId_ ? message.fromeUserID : message.toUserID;
        take_({conversation, std::move(message)});
    }

    void takeRecords(const std::string& name, const std::string& ending, const std::string& path) {
        const JsonDocument document(json_parse_file_no_link(path.c_str()));
        const JSON_Object* file = json_value_get_object(document.get());
        const JSON_Array* list = json_object_get_array(file, listKeyOf(ending));
        if (!isOfFormat(name, file != nullptr, versionOf(file), list != nullptr)) return;
        chattransfer::forEachObject(list, [&](const JSON_Object* object) { takeRecord(ending, object); });
    }

    // Counts the version of a file that is an object; says of one that is not, or has no list, why it is left out.
    bool isOfFormat(const std::string& name, bool isObject, const std::string& version, bool hasList) {
        if (isObject) ++facts_.versions[version];
        if (!isObject) {
            leaveOut(name, Omission::treeFileMalformed);
        } else if (!hasList) {
            leaveOut(name, Omission::treeFileWithoutRecords);
        }
        return isObject && hasList;
    }

    void takeRecord(const std::string& ending, const JSON_Object* object) {
        if (ending == chattransfer::kNoteExtension) {
            facts_.notes.push_back(chattransfer::readNote(object));
        } else if (ending == chattransfer::kRoomExtension) {
            facts_.rooms.push_back(chattransfer::readRoom(object));
        } else {
            facts_.contactFiles.back().contacts.push_back(chattransfer::readRecentContact(object));
        }
    }

    const TreeSource& source_;
    const std::string& key_;
    const std::function<void(TreeMessage)>& take_;
    const long long ownId_;
    std::optional<PrivateFolder> folder_;
    std::set<std::string> opened_;
    TreeFacts facts_;
};

}  // namespace

std::string TreeSource::attachments() const {
    return root + "/" + chattransfer::kTreeAttachmentsFolder;
}

TreeSource findTreeSource(const std::string& folder, const std::string& user, bool wanted) {
    const fs::path path = resolvedPath(folder);
    const bool holdsPackage =
        path.filename() == chattransfer::kPackageName || isFolder(path / chattransfer::kPackageName);
    if (holdsPackage && !wanted) return {"", user};
    if (isFolder(treeFolderIn(path.string(), user))) return {treeFolderIn(path.string(), user), user};
    const fs::path trees = fs::path(chattransfer::kTreeFolder).parent_path().filename();
    const bool holdsTrees = path.filename() == trees || isFolder(path / trees);
    if (!holdsTrees && isFolder(path) && (wanted || looksLikeTree(path))) return {path.string(), user};
    if (holdsTrees || wanted) return {findTree(path.string(), user).root, user};
    return {"", user};
}

TreeFacts readTree(const TreeSource& source, const std::string& key, const std::function<void(TreeMessage)>& take) {
    // Decrypted texts must not stay in the private folder.
    const InterruptsMark interrupts;
    TreeFacts facts;
    interruptible([&] { facts = TreeContentsReader(source, key, take).run(); }, wordsForNothingDone);
    return facts;
}

}  // namespace app
