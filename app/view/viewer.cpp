#include "app/view/viewer.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "app/view/conversation_pages.h"
#include "app/view/list_pages.h"
#include "app/view/page_folder.h"
#include "app/view/search_index.h"
#include "app/view/statistics.h"
#include "app/view/statistics_page.h"

namespace app::view {
namespace {

constexpr const char* kMediaFolder = "media/";

// By the day that the data gives, then by time; ids grow with time too.
void sortMessages(Conversation& conversation) {
    std::stable_sort(conversation.messages.begin(), conversation.messages.end(),
                     [](const Message& a, const Message& b) {
                         return std::tie(a.day, a.time, a.id) < std::tie(b.day, b.time, b.id);
                     });
}

long long messagesIn(const History& history) {
    long long messages = 0;
    for (const Conversation& conversation : history.conversations)
        messages += static_cast<long long>(conversation.messages.size());
    return messages;
}

}  // namespace

ViewCounts writeView(History& history, tools::ConfinedFolder attachments, const std::string& folder,
                     const ViewProgress& progress) {
    PageFolder pages(folder);
    pages.makeFolder(kMediaFolder);
    for (Conversation& conversation : history.conversations)
        sortMessages(conversation);
    sortConversations(history);

    MediaFolder media(std::move(attachments), folder + kMediaFolder);
    ListPages list;
    SearchIndex search(pages);
    Statistics statistics;
    const long long all = messagesIn(history);
    for (const Conversation& conversation : history.conversations) {
        const std::vector<PageRange> ranges = pagesOf(conversation.messages);
        writeConversation(pages, history, conversation, ranges, media);
        list.add(history, conversation, ranges.size());
        search.add(history, conversation, ranges);
        statistics.add(history, conversation);
        progress(statistics.messages, all);
    }
    list.write(pages, history);
    search.finish();
    writeStatistics(pages, history, statistics, media.counts());
    return {statistics.messages, static_cast<long long>(history.conversations.size()), pages.files(), media.counts()};
}

}  // namespace app::view
