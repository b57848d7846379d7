#include "app/package/package_summary.h"

#include <algorithm>

#include "app/base/calendar.h"
#include "app/base/json_texts.h"
#include "app/base/paths.h"
#include "app/base/printable.h"
#include "app/verify/attachment_check.h"
#include "host/json/json_owner.h"
#include "transfer/format/attachment_body.h"
#include "transfer/format/tree_body.h"

namespace app {
namespace {

using tools::JsonDocument;

void setFacts(JSON_Object* object, const PackageFacts& facts) {
    JSON_Array* versions = addArray(object, "versions");
    for (const auto& [version, files] : facts.versions) {
        appendText(versions, version);
    }
    set(object, "messageFiles", facts.messageFiles);
    set(object, "messageFilesBehindGap", facts.filesBehindGap);
    JSON_Array* unreadable = addArray(object, "unreadableFiles");
    for (const std::string& path : facts.unreadable)
        appendText(unreadable, path);
    json_object_set_boolean(object, "hasRecentContacts", facts.hasContacts ? 1 : 0);
    set(object, "recentContacts", static_cast<long long>(facts.contacts.size()));
}

}  // namespace

void PackageSummary::add(const imsdk::st_dbMessageBean& message) {
    const Day day(message.year_, message.mon, message.day_);
    Conversation& conversation = conversations[message.targetID];
    if (conversation.messages == 0) conversation.first = conversation.last = day;
    conversation.first = std::min(conversation.first, day);
    conversation.last = std::max(conversation.last, day);
    ++conversation.messages;
    ++conversation.byType[message.msgType];
    ++messages;
    ++byType[message.msgType];
}

void PackageSummary::addNames(const std::vector<imsdk::st_dbReContactBean>& contacts) {
    for (const imsdk::st_dbReContactBean& contact : contacts) {
        const auto conversation = conversations.find(contact.targetID);
        if (conversation != conversations.end()) conversation->second.name = contact.name;
    }
}

std::optional<std::pair<PackageSummary::Day, PackageSummary::Day>> PackageSummary::days() const {
    std::optional<std::pair<Day, Day>> range;
    for (const auto& [id, conversation] : conversations) {
        if (!range) range.emplace(conversation.first, conversation.last);
        range->first = std::min(range->first, conversation.first);
        range->second = std::max(range->second, conversation.last);
    }
    return range;
}

PackageSummary summarise(const PackagePlace& place) {
    PackageSummary summary;
    AttachmentCheck attachments(place.attachments, "");
    summary.facts = readPackage(place, [&](const PackageMessage& message) {
        summary.add(message.record);
        attachments.collect(message.record.body, message.record.msgType);
    });
    summary.addNames(summary.facts.contacts);
    summary.attachments = attachments.count();
    summary.bytes = sizeOfFolder(place.messages) + sizeOfFolder(place.attachments);
    return summary;
}

std::string dayText(const PackageSummary::Day& day) {
    return app::dayText(std::get<0>(day), std::get<1>(day), std::get<2>(day));
}

void addAttachments(JSON_Object* object, const AttachmentCounts& counts) {
    JSON_Object* attachments = addObject(object, "attachments");
    set(attachments, "named", counts.named);
    set(attachments, "present", counts.inSource());
    set(attachments, "missing", counts.neither);
    set(attachments, "refused", counts.refused);
}

void addTypes(JSON_Object* object, const std::map<int, long long>& byType) {
    JSON_Object* types = addObject(object, "byType");
    for (const auto& [type, messages] : byType)
        set(types, std::to_string(type).c_str(), messages);
}

void addConversations(JSON_Object* object, const PackageSummary& summary) {
    JSON_Array* conversations = addArray(object, "conversations");
    for (const auto& [id, conversation] : summary.conversations) {
        JSON_Object* element = appendObject(conversations);
        set(element, "id", std::to_string(id));
        set(element, "name", conversation.name);
        set(element, "messages", conversation.messages);
        set(element, "firstDay", dayText(conversation.first));
        set(element, "lastDay", dayText(conversation.last));
        addTypes(element, conversation.byType);
    }
}

std::string jsonOf(const PackageSummary& summary) {
    const JsonDocument document(json_value_init_object());
    JSON_Object* object = json_value_get_object(document.get());
    setFacts(object, summary.facts);
    set(object, "messages", summary.messages);
    if (const auto days = summary.days()) {
        set(object, "firstDay", dayText(days->first));
        set(object, "lastDay", dayText(days->second));
    }
    addTypes(object, summary.byType);
    addAttachments(object, summary.attachments);
    set(object, "bytes", static_cast<long long>(summary.bytes));
    addConversations(object, summary);
    return prettyTextOf(document);
}

std::string typeName(int msgType) {
    switch (msgType) {
        case chattransfer::kVoiceMessage:
            return "voice";
        case chattransfer::kImageMessage:
            return "image";
        case chattransfer::kFileMessage:
            return "file";
        case chattransfer::kPicturesMessage:
            return "pictures";
        case chattransfer::kVideoMessage:
            return "video";
        default:
            return "type " + std::to_string(msgType);
    }
}

}  // namespace app
