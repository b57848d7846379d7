#include "transfer/attachments/tree_attachments.h"

#include "host/json/json_tree.h"
#include "host/tools.h"
#include "transfer/attachments/attachment_count.h"
#include "transfer/attachments/backup_place.h"
#include "transfer/format/attachment_body.h"
#include "transfer/format/json_fields.h"

namespace chattransfer {
namespace {

std::string baseNameOf(const std::string& value) {
    std::string name;
    tools::getNameFromPath(value, name);
    return name;
}

std::string asFolder(const std::string& path) {
    return path.empty() || path.back() == '/' ? path : path + "/";
}

enum class MissingFolder { stays, isCreated };

tools::FileOutcome moveInto(tools::ConfinedFolder& tree, const std::string& value, tools::ConfinedFolder& user,
                            const std::string& name, MissingFolder missing) {
    constexpr std::size_t kNameBuffer = 256;
    // An empty folder is one that nobody has set: it must not come to mean the working directory.
    if (tree.path().empty() || baseNameOf(value).size() >= kNameBuffer) return tools::FileOutcome::missing;
    if (user.path().empty()) return tools::FileOutcome::failed;
    if (missing == MissingFolder::isCreated && tree.hasFile(value)) {
        const std::size_t slash = name.rfind('/');
        user.createFolder(slash == std::string::npos ? "" : name.substr(0, slash));
    }
    return tree.moveTo(user, value, name);
}

class FileMover {
public:
    FileMover(TransferReport& report, TreeFileFolders& folders, const TreeFileKeys& keys)
        : report_(report), folders_(folders), keys_(keys) {}

    void move(const JSON_Object* body, int type) {
        if (type == kVoiceMessage) moveByName(body, keys_.voice, folders_.audio);
        if (type == kFileMessage) moveByName(body, keys_.file, folders_.file);
        if (type == kImageMessage) moveImage(body);
        if (type == kVideoMessage) moveVideo(body);
        if (type == kPicturesMessage) {
            forEachObject(json_object_get_array(body, keys_.pictures),
                          [this](const JSON_Object* picture) { moveImage(picture); });
        }
    }

private:
    void moveImage(const JSON_Object* body) {
        moveByUrl(body, keys_.image, folders_.image);
        moveByUrl(body, keys_.thumbnail, folders_.image);
    }

    // A preview without its video, or the other way round, would be shown as a broken video.
    void moveVideo(const JSON_Object* body) {
        const bool complete = json_object_get_string(body, keys_.preview) != nullptr &&
                              json_object_get_string(body, keys_.video) != nullptr;
        if (!complete) return;
        moveByUrl(body, keys_.preview, folders_.image);
        moveByUrl(body, keys_.video, folders_.video);
    }

    void moveByName(const JSON_Object* body, const char* key, tools::ConfinedFolder& user) {
        const std::string value = textOf(body, key);
        moveUnlessPresent(value, user, baseNameOf(value), MissingFolder::stays);
    }

    void moveByUrl(const JSON_Object* body, const char* key, tools::ConfinedFolder& user) {
        const std::string value = textOf(body, key);
        moveUnlessPresent(value, user, tools::getUniqueNameByUrl(value, true), MissingFolder::isCreated);
    }

    void moveUnlessPresent(const std::string& value, tools::ConfinedFolder& user, const std::string& name,
                           MissingFolder missing) {
        if (value.empty()) return;
        const tools::FileKind kind = user.path().empty() ? tools::FileKind::none : user.kindOf(name);
        takeUnlessPresent(report_, value, kind, [&] { return moveInto(folders_.tree, value, user, name, missing); });
    }

    static std::string textOf(const JSON_Object* body, const char* key) {
        const char* text = json_object_get_string(body, key);
        return text != nullptr ? text : "";
    }

    TransferReport& report_;
    TreeFileFolders& folders_;
    const TreeFileKeys& keys_;
};

}  // namespace

TreeFileFolders::TreeFileFolders(const dbTrans& transfer)
    : tree(attachmentFolder(transfer)),
      audio(asFolder(transfer.userAudioDir)),
      file(asFolder(transfer.userFileDir)),
      image(asFolder(transfer.userImageDir)),
      video(asFolder(transfer.userVideoDir)) {
    for (tools::ConfinedFolder* folder : {&audio, &file, &image, &video})
        folder->rehearse(transfer.rehearsal);
}

bool carriesTreeFiles(int type) {
    return carriesAttachments(type) || type == kPicturesMessage || type == kVideoMessage;
}

int moveTreeFiles(TransferReport& report, TreeFileFolders& folders, const std::string& body, int type,
                  const TreeFileKeys& keys) {
    if (!carriesTreeFiles(type)) return 0;
    std::string text = body;
    const tools::JsonDocument document = tools::readJsonTree(text);
    if (!document) return 0;
    FileMover(report, folders, keys).move(json_value_get_object(document.get()), type);
    return 1;
}

}  // namespace chattransfer
