#include "app/sample/sample_tree.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "app/base/failure.h"
#include "app/base/json_texts.h"
#include "app/places/new_file.h"
#include "app/sample/put_field.h"
#include "app/sample/sample_texts.h"
#include "host/tools.h"
#include "transfer/format/attachment_body.h"
#include "transfer/format/json_fields.h"
#include "transfer/format/package_format.h"
#include "transfer/format/package_text.h"
#include "transfer/format/tree_format.h"
#include "transfer/tables/recent_contact_table.h"

namespace app {
namespace {

using imsdk::st_dbMessageBean;
using tools::JsonDocument;

constexpr int kTextNote = 1;

// The last evening of every sample, 2024-06-30 20:00 UTC: notes are written then, one a minute.
constexpr long long kLastEvening = 1719777600000;
constexpr const char* kLastDay = "2024-06-30";
constexpr long long kMinute = 60000;

AttachmentMaker makerOf(const TreeAttachmentMaker& attachments) {
    return [attachments](int msgType, long long messageId, const std::string& day, Random& random) {
        return attachments.make(msgType, chattransfer::kMessageFileKeys, std::to_string(messageId), day, random);
    };
}

bool onOneDay(const st_dbMessageBean& one, const st_dbMessageBean& other) {
    return one.year_ == other.year_ && one.mon == other.mon && one.day_ == other.day_;
}

void makeFolder(const std::string& path) {
    if (tools::createDir(path.c_str()) == 0) return;
    throw Failure({0, "A folder of the sample cannot be made", path, systemWords(errno), ""});
}

// A file with a version and a list of objects.
class ListFile {
public:
    ListFile(const std::string& version, const char* listKey) : document_(json_value_init_object()) {
        JSON_Object* object = json_value_get_object(document_.get());
        putField(object, chattransfer::kVersionKey, version);
        json_object_set_value(object, listKey, json_value_init_array());
        list_ = json_object_get_array(object, listKey);
    }

    // The new object; it stays valid as long as the file.
    JSON_Object* append() {
        json_array_append_value(list_, json_value_init_object());
        return json_array_get_object(list_, json_array_get_count(list_) - 1);
    }

    void write(const std::string& path) const { writeNewFile(path, textOf(document_)); }

private:
    JsonDocument document_;
    JSON_Array* list_ = nullptr;
};

void appendRoom(ListFile& file, const std::string& name, int top, const std::vector<long long>& members) {
    JSON_Object* room = file.append();
    putField(room, "name", name);
    putField(room, "top", top);
    chattransfer::setList(room, chattransfer::kRoomMembersKey,
                          tools::int64_To_String(members, chattransfer::kListSeparator));
}

}  // namespace

std::vector<long long> treeConversationSizes(const SamplePlan& plan) {
    constexpr long long kMost = 4000;
    std::vector<long long> sizes = conversationSizes(plan);
    long long excess = 0;
    for (long long& size : sizes) {
        const long long over = std::max(0LL, size - kMost);
        size -= over;
        excess += over;
    }
    for (long long& size : sizes) {
        const long long taken = std::min(excess, kMost - size);
        size += taken;
        excess -= taken;
    }
    sizes.front() += excess;
    return sizes;
}

long long writeMessageFiles(const std::string& folder, const std::string& version, long long perFile,
                            const std::vector<st_dbMessageBean>& messages) {
    makeFolder(folder);
    chattransfer::MessageFileText text(version);
    long long number = 0;
    for (std::size_t begin = 0; begin < messages.size(); begin += static_cast<std::size_t>(perFile)) {
        const std::size_t end = std::min(messages.size(), begin + static_cast<std::size_t>(perFile));
        text.begin();
        for (std::size_t first = begin, next = begin; first < end; first = next) {
            while (next < end && onOneDay(messages[first], messages[next]))
                ++next;
            const st_dbMessageBean& day = messages[first];
            text.addDay({day.year_, day.mon, day.day_}, messages.data() + first, messages.data() + next);
        }
        std::string path = folder;
        path.append("/msg_").append(std::to_string(++number)).append(chattransfer::kMessageExtension);
        writeNewFile(path, std::string(text.finish()));
    }
    return number;
}

TreeSample::TreeSample(TreeSampleSettings settings, std::string folder)
    : settings_(std::move(settings)),
      folder_(std::move(folder)),
      attachments_(folder_ + chattransfer::kTreeAttachmentsFolder),
      writer_(settings_.plan, AttachmentTurns(settings_.plan.messages, treeAttachments()), makerOf(attachments_)) {}

void TreeSample::write(const std::function<void(std::size_t)>& progress) {
    makeFolder(folder_ + chattransfer::kTreeAttachmentsFolder);
    const std::vector<long long> ids = conversationIds(settings_.plan);
    const std::vector<long long> sizes = treeConversationSizes(settings_.plan);
    for (std::size_t i = 0; i < ids.size(); ++i) {
        writeConversation(writer_.conversation(static_cast<long long>(i), ids[i], settings_.ownId), sizes[i]);
        progress(i + 1);
    }
    writeContacts();
    writeNotes(ids);
    writeRooms(ids);
}

void TreeSample::writeConversation(const SampleConversation& conversation, long long size) {
    const std::vector<st_dbMessageBean> messages = writer_.messages(conversation, size);
    if (!messages.empty()) writeMessages(conversation, messages);
    contacts_.push_back(writer_.contact(conversation, messages.empty() ? nullptr : &messages.back()));
    if (conversation.group()) groups_.push_back(conversation);
}

void TreeSample::writeMessages(const SampleConversation& conversation, const std::vector<st_dbMessageBean>& messages) {
    counts_.messageFiles += writeMessageFiles(folder_ + std::to_string(conversation.id), settings_.version,
                                              settings_.messagesPerFile, messages);
    for (const st_dbMessageBean& message : messages)
        ++counts_.messagesByType[message.msgType];
    counts_.messages += static_cast<long long>(messages.size());
}

void TreeSample::writeContacts() {
    ListFile file(settings_.version, chattransfer::kRecentContactsKey);
    for (const imsdk::st_dbReContactBean& contact : contacts_) {
        JSON_Object* object = file.append();
        chattransfer::forEachRecentContactField(
            contact, [object](int /*column*/, const char* name, const auto& field) { putField(object, name, field); });
    }
    file.write(folder_ + "contacts" + chattransfer::kContactExtension);
    counts_.contacts = static_cast<long long>(contacts_.size());
}

// Two of each type. Every other one stands in a conversation, the rest are the user's own.
void TreeSample::writeNotes(const std::vector<long long>& ids) {
    constexpr long long kNotes = 12;
    const std::array<int, 6> types = {kTextNote,
                                      chattransfer::kVoiceMessage,
                                      chattransfer::kImageMessage,
                                      chattransfer::kFileMessage,
                                      chattransfer::kPicturesMessage,
                                      chattransfer::kVideoMessage};
    Random random(settings_.plan.seed);
    ListFile file(settings_.version, chattransfer::kNotesKey);
    for (long long i = 0; i < kNotes; ++i) {
        st_noteTrans note;
        note.sendUserId = settings_.ownId;
        note.targetID = i % 2 == 0 ? settings_.ownId : ids[static_cast<std::size_t>(i) % ids.size()];
        note.type = static_cast<signed char>(types.at(static_cast<std::size_t>(i) % types.size()));
        note.lastChgTime = kLastEvening + i * kMinute;
        note.isReminder = static_cast<signed char>(random.oneIn(3) ? 1 : 0);
        note.rmdTime = note.isReminder != 0 ? note.lastChgTime + 60 * kMinute : 0;
        note.isArchive = static_cast<signed char>(random.oneIn(4) ? 1 : 0);
        note.content = note.type == kTextNote ? makeText(random)
                                              : attachments_.make(note.type, chattransfer::kNoteFileKeys,
                                                                  "note_" + std::to_string(i + 1), kLastDay, random);
        JSON_Object* object = file.append();
        chattransfer::forEachNoteKey(note,
                                     [object](const char* key, const auto& field) { putField(object, key, field); });
    }
    file.write(folder_ + "notes" + chattransfer::kNoteExtension);
    counts_.notes = kNotes;
}

void TreeSample::writeRooms(const std::vector<long long>& ids) {
    Random random(settings_.plan.seed + 1);
    ListFile file(settings_.version, chattransfer::kRoomsKey);
    constexpr std::size_t kFirstMembers = 3;
    std::vector<long long> members(ids.begin(), ids.begin() + static_cast<long>(std::min(ids.size(), kFirstMembers)));
    members.insert(members.begin(), settings_.ownId);
    appendRoom(file, groupName(random), 1, members);
    for (const SampleConversation& group : groups_) {
        members = group.others;
        members.insert(members.begin(), settings_.ownId);
        appendRoom(file, groupName(random), random.oneIn(5) ? 1 : 0, members);
    }
    file.write(folder_ + "rooms" + chattransfer::kRoomExtension);
    counts_.rooms = static_cast<long long>(groups_.size()) + 1;
}

}  // namespace app
