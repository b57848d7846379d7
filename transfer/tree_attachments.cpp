#include "transfer/tree_attachments.h"

#include "host/confined_files.h"
#include "host/json_tree.h"
#include "host/tools.h"
#include "transfer/attachment_body.h"
#include "transfer/attachment_count.h"
#include "transfer/backup_place.h"
#include "transfer/json_fields.h"

namespace transfer {
namespace {

// At every "/" of the path, the folder before it.
void createDirRe(const std::string& path) {
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1)) {
        const std::string folder = path.substr(0, slash);
        if (tools::isFileExsit(folder) == 0) tools::createDir(folder.c_str());
    }
}

std::string baseNameOf(const std::string& value) {
    std::string name;
    tools::getNameFromPath(value, name);
    return name;
}

std::string asFolder(const std::string& path) {
    return path.back() == '/' ? path : path + "/";
}

enum class MissingFolder { stays, isCreated };

tools::FileOutcome moveInto(const dbTrans& transfer, const std::string& value, const std::string& userFolder,
                            const std::string& name, MissingFolder missing) {
    constexpr std::size_t kNameBuffer = 256;
    // An empty folder is one that nobody has set: it must not come to mean the working directory.
    if (transfer.imFileDir.empty() || baseNameOf(value).size() >= kNameBuffer) return tools::FileOutcome::missing;
    if (userFolder.empty()) return tools::FileOutcome::failed;
    const std::string folder = asFolder(userFolder);
    const BackupPlace from = attachmentPlace(transfer, value);
    if (missing == MissingFolder::isCreated && tools::confinedFileExists(from.folder, from.name)) {
        createDirRe(folder + name);
    }
    return tools::moveConfined(from.folder, from.name, folder, name);
}

class FileMover {
public:
    FileMover(dbTrans& transfer, const TreeFileKeys& keys) : transfer_(transfer), keys_(keys) {}

    void move(const JSON_Object* body, int type) {
        if (type == kVoiceMessage) moveByName(body, keys_.voice, transfer_.userAudioDir);
        if (type == kFileMessage) moveByName(body, keys_.file, transfer_.userFileDir);
        if (type == kImageMessage) moveImage(body);
        if (type == kVideoMessage) moveVideo(body);
        if (type == kPicturesMessage) {
            forEachObject(json_object_get_array(body, keys_.pictures),
                          [this](const JSON_Object* picture) { moveImage(picture); });
        }
    }

private:
    void moveImage(const JSON_Object* body) {
        moveByUrl(body, keys_.image, transfer_.userImageDir);
        moveByUrl(body, keys_.thumbnail, transfer_.userImageDir);
    }

    // A preview without its video, or the other way round, would be shown as a broken video.
    void moveVideo(const JSON_Object* body) {
        const bool complete = json_object_get_string(body, keys_.preview) != nullptr &&
                              json_object_get_string(body, keys_.video) != nullptr;
        if (!complete) return;
        moveByUrl(body, keys_.preview, transfer_.userImageDir);
        moveByUrl(body, keys_.video, transfer_.userVideoDir);
    }

    void moveByName(const JSON_Object* body, const char* key, const std::string& userFolder) {
        const std::string value = textOf(body, key);
        moveUnlessPresent(value, userFolder, baseNameOf(value), MissingFolder::stays);
    }

    void moveByUrl(const JSON_Object* body, const char* key, const std::string& userFolder) {
        const std::string value = textOf(body, key);
        moveUnlessPresent(value, userFolder, tools::getUniqueNameByUrl(value, true), MissingFolder::isCreated);
    }

    void moveUnlessPresent(const std::string& value, const std::string& userFolder, const std::string& name,
                           MissingFolder missing) {
        if (value.empty()) return;
        if (!userFolder.empty() && tools::confinedNameSeen(asFolder(userFolder), name)) {
            ++transfer_.report.attachmentsPresent;
            return;
        }
        countAttachment(transfer_.report, value, moveInto(transfer_, value, userFolder, name, missing));
    }

    static std::string textOf(const JSON_Object* body, const char* key) {
        const char* text = json_object_get_string(body, key);
        return text != nullptr ? text : "";
    }

    dbTrans& transfer_;
    const TreeFileKeys& keys_;
};

}  // namespace

bool carriesTreeFiles(int type) {
    return carriesAttachments(type) || type == kPicturesMessage || type == kVideoMessage;
}

int moveTreeFiles(dbTrans& transfer, const std::string& body, int type, const TreeFileKeys& keys) {
    if (!carriesTreeFiles(type)) return 0;
    std::string text = body;
    const tools::JsonDocument document = tools::readJsonTree(text);
    if (!document) return 0;
    FileMover(transfer, keys).move(json_value_get_object(document.get()), type);
    return 1;
}

}  // namespace transfer
