#include "transfer/format/attachment_body.h"

#include <array>
#include <string_view>

#include "host/json/json_reader.h"

namespace chattransfer {
namespace {

// Stores the text that stands next, up to its first NUL, as the JSON library gives it; passes over anything else. True
// for a text.
bool readText(tools::JsonReader& reader, std::string& field) {
    if (!reader.atString()) {
        reader.skip();
        return false;
    }
    field.assign(reader.readText());
    return true;
}

}  // namespace

std::string AttachmentBody::packagePath() const {
    return folderOf(mediaUrl) + "/" + fileName;
}

AttachmentBody readAttachmentBody(const std::string& body, int msgType) {
    AttachmentBody result;
    if (!carriesAttachments(msgType)) return result;
    const std::array<std::string_view, 2> keys = {"mediaUrl", msgType == kImageMessage ? "thumbUrl" : "fileName"};
    const std::array<std::string*, 2> fields = {&result.mediaUrl,
                                                msgType == kImageMessage ? &result.thumbUrl : &result.fileName};
    std::array<bool, 2> present{};
    std::string text = body;
    tools::JsonReader reader(text);
    if (!reader.atObject()) return {};
    tools::readJsonObject(reader, keys,
                          [&](std::size_t index) { present.at(index) = readText(reader, *fields.at(index)); });
    if (!reader.ok()) return {};
    result.recognised = true;
    result.complete = present[0] && present[1];
    return result;
}

std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

}  // namespace chattransfer
