#include "app/view/conversation_text.h"

#include "app/view/clock.h"
#include "app/view/shown_text.h"
#include "transfer/format/attachment_body.h"
#include "transfer/format/tree_body.h"

namespace app::view {
namespace {

constexpr const char* kindText(MediaKind kind) {
    switch (kind) {
        case MediaKind::picture:
            return "Picture";
        case MediaKind::voice:
            return "Voice message";
        case MediaKind::video:
            return "Video";
        case MediaKind::file:
            break;
    }
    return "File";
}

// A name says something only where people chose it.
std::string fileText(const NamedFile& file) {
    std::string text = kindText(file.kind);
    if (file.kind == MediaKind::file) text += ": " + shownLine(file.shownName);
    return text;
}

}  // namespace

std::string nameOf(const History& history, long long id) {
    constexpr std::size_t kLongestName = 100;
    const auto contact = history.contacts.find(id);
    const std::string name = contact != history.contacts.end() ? shortLine(contact->second.name, kLongestName) : "";
    const bool blank = name.find_first_not_of(' ') == std::string::npos;
    return blank ? std::to_string(id) : name;
}

bool isOwn(const History& history, const Message& message) {
    return std::to_string(message.sender) == history.user;
}

std::string senderOf(const History& history, const Message& message) {
    return isOwn(history, message) ? "You" : nameOf(history, message.sender);
}

std::string whenText(const Message& message) {
    const auto clock = clockOf(message.time);
    return shortDayText(message.day) + (clock ? " " + clockText(*clock) : "");
}

std::string textOf(const History& history, const Message& message) {
    std::string text;
    for (const NamedFile& file : history.filesOf(message.body, message.type)) {
        if (!file.isPreview) text += (text.empty() ? "" : ", ") + fileText(file);
    }
    return text.empty() ? shownText(message.body) : text;
}

std::string typeText(int type) {
    constexpr int kOldestTextMessage = 0;
    constexpr int kTextMessage = 1;
    switch (type) {
        case kOldestTextMessage:
        case kTextMessage:
            return "Text";
        case chattransfer::kVoiceMessage:
            return "Voice";
        case chattransfer::kImageMessage:
            return "Picture";
        case chattransfer::kFileMessage:
            return "File";
        case chattransfer::kPicturesMessage:
            return "Pictures";
        case chattransfer::kVideoMessage:
            return "Video";
        default:
            return "Type " + std::to_string(type);
    }
}

}  // namespace app::view
