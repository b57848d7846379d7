#include "app/sample/sample_tree_attachment.h"

#include <cerrno>
#include <new>

#include "app/base/failure.h"
#include "app/base/json_texts.h"
#include "app/places/new_file.h"
#include "app/sample/put_field.h"
#include "app/sample/sample_media.h"
#include "app/sample/sample_texts.h"
#include "host/tools.h"
#include "transfer/format/attachment_body.h"
#include "transfer/format/json_fields.h"

namespace app {
namespace {

using chattransfer::TreeFileKeys;
using tools::JsonDocument;

constexpr int kPictures = 3;

}  // namespace

AttachmentKinds treeAttachments() {
    return {{chattransfer::kVoiceMessage, chattransfer::kImageMessage, chattransfer::kFileMessage,
             chattransfer::kPicturesMessage, chattransfer::kVideoMessage},
            1 + 2 + 1 + 2 * kPictures + 2};
}

std::string TreeAttachmentMaker::write(const std::string& name, const std::string& bytes) const {
    const std::string path = folder_ + name;
    const std::string folder = path.substr(0, path.rfind('/'));
    if (tools::createDir(folder.c_str()) != 0) {
        throw Failure({0, "A folder of the sample cannot be made", folder, systemWords(errno), ""});
    }
    writeNewFile(path, bytes);
    return name;
}

std::string TreeAttachmentMaker::make(int type, const TreeFileKeys& keys, const std::string& id, const std::string& day,
                                      Random& random) const {
    const JsonDocument body(json_value_init_object());
    JSON_Object* object = json_value_get_object(body.get());
    const auto addPhoto = [&](JSON_Object* target, const std::string& name) {
        const SamplePhoto photo = pickPhoto(random);
        const std::string path = "image/" + day + "/" + name;
        putField(target, keys.image, write(path + ".png", photo.picture));
        putField(target, keys.thumbnail, write(path + "_small.png", photo.thumbnail));
    };
    if (type == chattransfer::kVoiceMessage) {
        putField(object, keys.voice, write("voice/" + day + "/voice_" + id + ".wav", pickVoice(random)));
    } else if (type == chattransfer::kFileMessage) {
        const bool document = random.oneIn(2);
        const std::string name = "file/" + day + (document ? "/Übersicht " + id + ".pdf" : "/メモ_" + id + ".txt");
        putField(object, keys.file, write(name, document ? pickDocument(random) : makeNotes(random)));
    } else if (type == chattransfer::kImageMessage) {
        addPhoto(object, "photo_" + id);
    } else if (type == chattransfer::kPicturesMessage) {
        json_object_set_value(object, keys.pictures, json_value_init_array());
        JSON_Array* pictures = json_object_get_array(object, keys.pictures);
        for (int i = 0; i < kPictures; ++i) {
            JsonDocument picture(json_value_init_object());
            addPhoto(json_value_get_object(picture.get()), "picture_" + id + "_" + std::to_string(i + 1));
            if (!chattransfer::appendValue(pictures, std::move(picture))) throw std::bad_alloc();
        }
    } else if (type == chattransfer::kVideoMessage) {
        putField(object, keys.preview, write("video/" + day + "/preview_" + id + ".png", pickPhoto(random).picture));
        putField(object, keys.video, write("video/" + day + "/video_" + id + ".mp4", pickVideo(random)));
    }
    return textOf(body);
}

}  // namespace app
