#include "app/sample/sample_conversation.h"

#include <algorithm>
#include <array>
#include <utility>

#include "app/base/calendar.h"
#include "app/sample/sample_texts.h"
#include "transfer/tables/recent_contact_table.h"

namespace app {
namespace {

constexpr int kTextMessage = 1;
constexpr long long kMillisecondsPerDay = 86400000;

// Ids grow with time, as those of a server do. Conversations differ in the last three digits.
long long messageId(long long time, long long conversation) {
    return time * 1000 + conversation % 1000;
}

void setDay(imsdk::st_dbMessageBean& message) {
    const CivilDay day = civilDay(message.time_ / kMillisecondsPerDay);
    message.year_ = day.year;
    message.mon = day.month;
    message.day_ = day.day;
}

long long pickId(Random& random, const std::vector<long long>& ids) {
    return ids[static_cast<std::size_t>(random.below(ids.size()))];
}

std::string pickIds(Random& random, const std::vector<long long>& ids) {
    std::string joined = std::to_string(pickId(random, ids));
    if (random.oneIn(2)) joined += ";" + std::to_string(pickId(random, ids));
    return joined;
}

// One message in twelve answers one of the ten before it.
void answer(imsdk::st_dbMessageBean& message, const std::vector<imsdk::st_dbMessageBean>& before, Random& random) {
    if (before.empty() || !random.oneIn(12)) return;
    const std::uint64_t back = 1 + random.below(std::min<std::uint64_t>(10, before.size()));
    const imsdk::st_dbMessageBean& asked = before[before.size() - static_cast<std::size_t>(back)];
    message.relatedMsgID = asked.msgID;
    message.relatedUsers = std::to_string(asked.fromeUserID);
}

}  // namespace

SampleWriter::SampleWriter(SamplePlan plan, AttachmentTurns turns, AttachmentMaker makeAttachment)
    : plan_(plan), turns_(std::move(turns)), makeAttachment_(std::move(makeAttachment)) {}

Random SampleWriter::randomOf(long long conversation, unsigned long long stream) const {
    Random seed(plan_.seed + stream * 0x100000001B3U);
    return Random(seed.next() ^ (static_cast<unsigned long long>(conversation) * 0x9E3779B97F4A7C15U));
}

SampleConversation SampleWriter::conversation(long long number, long long id, long long ownId) const {
    constexpr long long kSmallestId = 1000000000000000;
    SampleConversation result{number, id, ownId};
    Random random = randomOf(number, 1);
    const bool group = number % 4 == 3;
    if (!group) result.others.push_back(id);
    for (std::uint64_t members = 3 + random.below(5); group && members > 0; --members) {
        result.others.push_back(kSmallestId + static_cast<long long>(random.below(8 * kSmallestId)));
    }
    return result;
}

std::vector<imsdk::st_dbMessageBean> SampleWriter::messages(const SampleConversation& conversation, long long count) {
    Random random = randomOf(conversation.number, 2);
    std::vector<imsdk::st_dbMessageBean> messages;
    messages.reserve(static_cast<std::size_t>(count));
    for (const long long time : messageTimes(plan_, conversation.number, count)) {
        imsdk::st_dbMessageBean message;
        message.time_ = time;
        message.msgID = messageId(time, conversation.number);
        message.lastMsgID = messages.empty() ? 0 : messages.back().msgID;
        message.localID = static_cast<long long>(messages.size()) + 1;
        setDay(message);
        fill(message, conversation, random);
        answer(message, messages, random);
        const int msgType = turns_.next();
        if (msgType != 0) attach(message, msgType, random);
        messages.push_back(std::move(message));
    }
    return messages;
}

void SampleWriter::fill(imsdk::st_dbMessageBean& message, const SampleConversation& conversation, Random& random) {
    constexpr std::array<std::string_view, 3> kSources = {"phone", "tablet", "desktop"};
    const bool own = random.oneIn(2);
    message.fromeUserID = own ? conversation.ownId : pickId(random, conversation.others);
    message.toUserID = own || conversation.group() ? conversation.id : conversation.ownId;
    message.targetID = conversation.id;
    message.msgType = kTextMessage;
    message.body = makeText(random);
    message.status = random.oneIn(20) ? 2 : 4;
    message.burnAfterReading = random.oneIn(200) ? 1 : 0;
    message.formate = "plain";
    message.sourceID = std::string(random.pick(kSources));
    if (random.oneIn(10)) message.msgProperties = R"({"bubble":)" + std::to_string(random.below(6)) + "}";
    if (conversation.group() && random.oneIn(40)) message.limitRange = pickIds(random, conversation.others);
}

void SampleWriter::attach(imsdk::st_dbMessageBean& message, int msgType, Random& random) {
    message.msgType = msgType;
    message.body = makeAttachment_(msgType, message.msgID, dayText({message.year_, message.mon, message.day_}), random);
}

imsdk::st_dbReContactBean SampleWriter::contact(const SampleConversation& conversation,
                                                const imsdk::st_dbMessageBean* last) const {
    constexpr long long kPinnedConversations = 2;
    Random random = randomOf(conversation.number, 3);
    imsdk::st_dbReContactBean contact;
    contact.targetID = conversation.id;
    contact.name = conversation.group() ? groupName(random) : personName(random);
    contact.type = conversation.group() ? 1 : 0;
    contact.top = conversation.number < kPinnedConversations ? chattransfer::kPinnedBit : 0;
    contact.wherefrom = random.oneIn(2) ? "search" : "invitation";
    if (last == nullptr) return contact;
    contact.lastMsgid = last->msgID;
    contact.time = last->time_;
    contact.msgType = last->msgType;
    contact.lastMsg = last->body;
    contact.msgProp = last->msgProperties;
    contact.sendUserID = last->fromeUserID;
    return contact;
}

}  // namespace app
