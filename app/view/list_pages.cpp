#include "app/view/list_pages.h"

#include <algorithm>
#include <set>

#include "app/base/units.h"
#include "app/view/conversation_pages.h"
#include "app/view/conversation_text.h"
#include "app/view/page_frame.h"
#include "app/view/pager.h"
#include "app/view/shown_text.h"

namespace app::view {
namespace {

constexpr std::size_t kConversationsOnAPage = 500;
constexpr std::size_t kLastMessageLength = 160;

bool isPinned(const History& history, long long id) {
    const auto contact = history.contacts.find(id);
    return contact != history.contacts.end() && contact->second.pinned;
}

std::string listPageName(std::size_t page) {
    return page == 1 ? "index.html" : "index-" + std::to_string(page) + ".html";
}

void addLastMessage(Markup& entry, const History& history, const Message& message, const std::string& place) {
    entry.tag(R"(<p class="last" dir="auto"><a href=")").text(place).tag(R"("><bdi>)");
    entry.text(senderOf(history, message)).tag(":</bdi> <bdi>");
    entry.text(shortLine(textOf(history, message), kLastMessageLength)).tag("</bdi></a></p>");
}

// Contacts of which the package or tree holds no message.
std::vector<long long> silentContacts(const History& history) {
    std::set<long long> speaking;
    for (const Conversation& conversation : history.conversations)
        speaking.insert(conversation.id);
    std::vector<long long> silent;
    for (const auto& [id, contact] : history.contacts) {
        if (speaking.count(id) == 0) silent.push_back(id);
    }
    return silent;
}

void addSilentContacts(Markup& content, const History& history) {
    const std::vector<long long> silent = silentContacts(history);
    if (silent.empty()) return;
    content.tag("<h2>Contacts without messages in this backup</h2>\n<ul class=\"conversations silent\">\n");
    for (const long long id : silent) {
        content.tag(R"(<li><p class="name"><bdi>)").text(nameOf(history, id)).tag("</bdi></p>");
        content.tag(R"(<p class="last" dir="auto">)");
        content.text(shortLine(history.contacts.at(id).lastText, kLastMessageLength)).tag("</p></li>\n");
    }
    content.tag("</ul>\n");
}

}  // namespace

void sortConversations(History& history) {
    const auto before = [&history](const Conversation& a, const Conversation& b) {
        const bool pinnedA = isPinned(history, a.id);
        if (pinnedA != isPinned(history, b.id)) return pinnedA;
        const Message& lastA = a.messages.back();
        const Message& lastB = b.messages.back();
        if (!(lastA.day == lastB.day)) return lastB.day < lastA.day;
        return lastA.time > lastB.time;
    };
    std::stable_sort(history.conversations.begin(), history.conversations.end(), before);
}

void ListPages::add(const History& history, const Conversation& conversation, std::size_t pages) {
    const std::string folder = folderOfConversation(conversation.id);
    const Message& last = conversation.messages.back();
    const std::string lastPlace = folder + pageName(pages) + "#m" + std::to_string(conversation.messages.size());
    Markup entry;
    entry.tag(R"(<li><p class="name"><a href=")").text(folder + pageName(1)).tag(R"("><bdi>)");
    entry.text(nameOf(history, conversation.id)).tag("</bdi></a>");
    if (isPinned(history, conversation.id)) entry.tag(R"( <span class="pin">Pinned</span>)");
    entry.tag(R"(</p><p class="when">)").text(whenText(last)).tag("</p>");
    addLastMessage(entry, history, last, lastPlace);
    entry.tag(R"(<p class="count">)");
    entry.text(counted(static_cast<long long>(conversation.messages.size()), "message", "messages"));
    entries_.push_back(entry.tag("</p></li>\n"));
}

void ListPages::write(PageFolder& folder, const History& history) const {
    const std::size_t pages =
        std::max<std::size_t>(1, (entries_.size() + kConversationsOnAPage - 1) / kConversationsOnAPage);
    for (std::size_t page = 1; page <= pages; ++page) {
        const Markup pager = pagerOf(page, pages, listPageName);
        Markup content;
        content.tag("<h1>Conversations</h1>\n").markup(pager);
        if (entries_.empty()) content.tag("<p>This backup holds no messages.</p>\n");
        content.tag("<ul class=\"conversations\">\n");
        const std::size_t end = std::min(entries_.size(), page * kConversationsOnAPage);
        for (std::size_t i = (page - 1) * kConversationsOnAPage; i < end; ++i)
            content.markup(entries_[i]);
        content.tag("</ul>\n").markup(pager);
        if (page == pages) addSilentContacts(content, history);
        folder.write(listPageName(page), wholePage(PageKind::plain, PagePlace::top, "Conversations", content));
    }
}

}  // namespace app::view
