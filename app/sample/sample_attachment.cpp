#include "app/sample/sample_attachment.h"

#include "app/base/json_texts.h"
#include "app/places/new_file.h"
#include "app/sample/sample_media.h"
#include "app/sample/sample_texts.h"
#include "transfer/format/account_folders.h"
#include "transfer/format/attachment_body.h"

namespace app {
namespace {

// The body of a voice or file message. The server knows the file under another name than the one that people see.
std::string bodyWithName(const std::string& serverPath, const std::string& fileName, std::size_t size) {
    const tools::JsonDocument body(json_value_init_object());
    JSON_Object* object = json_value_get_object(body.get());
    json_object_set_string(object, "mediaUrl", serverPath.c_str());
    json_object_set_string(object, "fileName", fileName.c_str());
    json_object_set_number(object, "fileSize", static_cast<double>(size));
    return textOf(body);
}

std::string makeVoiceMessage(const std::string& root, const std::string& id, const std::string& day, Random& random) {
    const std::string name = "voice_" + id + ".wav";
    const std::string sound = pickVoice(random);
    writeNewFile(root + chattransfer::kAudioFolder + name, sound);
    return bodyWithName("voice/" + day + "/" + id, name, sound.size());
}

std::string makeImageMessage(const std::string& root, const std::string& id, const std::string& day, Random& random) {
    const std::string name = "photo_" + id;
    const SamplePhoto photo = pickPhoto(random);
    writeNewFile(root + chattransfer::kImageFolder + name + ".png", photo.picture);
    writeNewFile(root + chattransfer::kImageFolder + name + "_small.png", photo.thumbnail);
    const tools::JsonDocument body(json_value_init_object());
    JSON_Object* object = json_value_get_object(body.get());
    json_object_set_string(object, "mediaUrl", ("image/" + day + "/" + name + ".png").c_str());
    json_object_set_string(object, "thumbUrl", ("image/" + day + "/" + name + "_small.png").c_str());
    return textOf(body);
}

std::string makeFileMessage(const std::string& root, const std::string& id, const std::string& day, Random& random) {
    const bool document = random.oneIn(2);
    const std::string name = document ? "Übersicht " + id + ".pdf" : "メモ_" + id + ".txt";
    const std::string bytes = document ? pickDocument(random) : makeNotes(random);
    writeNewFile(root + chattransfer::kFileFolder + name, bytes);
    return bodyWithName("file/" + day + "/" + id, name, bytes.size());
}

}  // namespace

std::string makeAttachment(const std::string& accountRoot, int msgType, long long messageId, const std::string& day,
                           Random& random) {
    const std::string id = std::to_string(messageId);
    if (msgType == chattransfer::kVoiceMessage) return makeVoiceMessage(accountRoot, id, day, random);
    if (msgType == chattransfer::kImageMessage) return makeImageMessage(accountRoot, id, day, random);
    return makeFileMessage(accountRoot, id, day, random);
}

}  // namespace app
