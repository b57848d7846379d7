#include "app/view/search_index.h"

#include "app/view/conversation_text.h"
#include "app/view/page_frame.h"
#include "app/view/shown_text.h"

namespace app::view {
namespace {

// A part is loaded in a moment, and while it is searched the page still answers.
constexpr std::size_t kMessagesInAPart = 5000;
constexpr std::size_t kBytesInAPart = 1000000;

constexpr const char* kFolder = "search/";

std::string partName(std::size_t part) {
    return kFolder + std::to_string(part) + ".js";
}

}  // namespace

void SearchIndex::add(const History& history, const Conversation& conversation, const std::vector<PageRange>& pages) {
    beginConversation(history, conversation);
    for (std::size_t page = pages.size(); page > 0; --page) {
        for (std::size_t i = pages[page - 1].end; i > pages[page - 1].first; --i) {
            if (messageCount_ >= kMessagesInAPart || messages_.size() >= kBytesInAPart) {
                writePart();
                beginConversation(history, conversation);
            }
            addMessage(history, conversation.messages[i - 1], page, i);
        }
    }
}

void SearchIndex::beginConversation(const History& history, const Conversation& conversation) {
    conversations_ += (conversationCount_ > 0 ? ",\n[" : "[") + scriptLiteral(std::to_string(conversation.id)) + "," +
                      scriptLiteral(nameOf(history, conversation.id)) + "]";
    ++conversationCount_;
}

// Place in the list of conversations, page, number, when, who, what.
void SearchIndex::addMessage(const History& history, const Message& message, std::size_t page, std::size_t number) {
    messages_ += messageCount_ > 0 ? ",\n[" : "[";
    messages_ += std::to_string(conversationCount_ - 1) + "," + std::to_string(page) + "," + std::to_string(number);
    for (const std::string& text : {whenText(message), senderOf(history, message), textOf(history, message)})
        messages_ += "," + scriptLiteral(text);
    messages_ += "]";
    ++messageCount_;
}

void SearchIndex::writePart() {
    if (parts_ == 0) folder_.makeFolder(kFolder);
    ++parts_;
    folder_.write(partName(parts_), "takePart(" + std::to_string(parts_) + ",{\"conversations\":[\n" + conversations_ +
                                        "],\n\"messages\":[\n" + messages_ + "]});\n");
    conversations_.clear();
    messages_.clear();
    conversationCount_ = 0;
    messageCount_ = 0;
}

void SearchIndex::finish() {
    if (messageCount_ > 0) writePart();
    writePage();
}

void SearchIndex::writePage() {
    Markup content;
    content.tag("<h1>Search</h1>\n<div role=\"search\" class=\"search\" id=\"search\" data-parts=\"");
    content.number(static_cast<long long>(parts_));
    content.tag("\">\n<label for=\"query\">Words in any message</label>\n<p class=\"field\">");
    content.tag(R"(<input id="query" type="search" dir="auto" autocomplete="off" spellcheck="false">)");
    content.tag("<button id=\"start\" type=\"button\">Search</button></p>\n");
    content.tag("<progress id=\"progress\" value=\"0\" hidden aria-label=\"Searched so far\"></progress>\n");
    content.tag("<p id=\"state\" role=\"status\"></p>\n</div>\n<ol id=\"hits\" class=\"hits\"></ol>\n");
    content.tag("<p><button id=\"more\" type=\"button\" hidden>More</button></p>\n");
    content.tag(
        "<noscript><p>The search needs JavaScript. Everything else on these pages works without.</p></noscript>\n");
    folder_.write("search.html", wholePage(PageKind::search, PagePlace::top, "Search", content));
}

}  // namespace app::view
