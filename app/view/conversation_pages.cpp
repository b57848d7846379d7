#include "app/view/conversation_pages.h"

#include "app/base/units.h"
#include "app/view/clock.h"
#include "app/view/conversation_text.h"
#include "app/view/message_days.h"
#include "app/view/message_markup.h"
#include "app/view/page_frame.h"

namespace app::view {
namespace {

class ConversationPages {
public:
    ConversationPages(PageFolder& folder, const History& history, const Conversation& conversation,
                      const std::vector<PageRange>& pages, MediaFolder& media)
        : folder_(folder),
          history_(history),
          conversation_(conversation),
          pages_(pages),
          media_(media),
          name_(nameOf(history, conversation.id)),
          days_(daysOf(conversation.messages, pages)) {}

    void write() {
        folder_.makeFolder(folderOfConversation(conversation_.id));
        for (std::size_t page = 1; page <= pages_.size(); ++page)
            writePage(page);
        writeDays();
    }

private:
    void writePage(std::size_t page) {
        const Markup pager = pagerOf(page, pages_.size(), pageName);
        Markup content = heading();
        content.markup(pager);
        addDaysOfPage(content, page);
        addMessages(content, pages_[page - 1]);
        content.markup(pager);
        const std::string number = pages_.size() > 1 ? ", page " + std::to_string(page) : "";
        save(pageName(page), PageKind::conversation, name_ + number, content);
    }

    Markup heading() const {
        Markup content;
        content.tag("<h1><bdi>").text(name_).tag("</bdi></h1>\n<p class=\"about\">");
        content.text(counted(static_cast<long long>(conversation_.messages.size()), "message", "messages"));
        content.tag(", ").text(shortDayText(days_.front().day));
        if (days_.size() > 1) content.tag(" to ").text(shortDayText(days_.back().day));
        content.tag(" \u00b7 <a href=\"days.html\">All days</a></p>\n");
        return content;
    }

    // The days whose messages stand on the page; the first of them may have begun on a page before.
    void addDaysOfPage(Markup& content, std::size_t page) const {
        const PageRange range = pages_[page - 1];
        content.tag(R"(<nav class="days" aria-label="Days on this page"><details><summary>Days on this page)");
        content.tag("</summary><p>");
        forEachDay(range, [&content](const CivilDay& day, std::size_t /*first*/) {
            content.tag(R"(<a href="#)").text(dayAnchor(day)).tag(R"(">)").text(shortDayText(day)).tag("</a> ");
        });
        content.tag("</p></details></nav>\n");
    }

    void addMessages(Markup& content, PageRange range) {
        bool open = false;
        forEachDay(range, [&](const CivilDay& day, std::size_t first) {
            if (open) content.tag("</ol></section>\n");
            open = true;
            content.tag(R"(<section class="day"><h2 id=")").text(dayAnchor(day)).tag(R"(">)");
            content.text(longDayText(day)).tag("</h2>\n<ol class=\"messages\">\n");
            for (std::size_t i = first; i < range.end && conversation_.messages[i].day == day; ++i)
                addMessage(content, history_, conversation_.messages[i], i + 1, media_);
        });
        content.tag("</ol></section>\n");
    }

    // Calls visit(day, index of its first message in the range).
    template <class Visit>
    void forEachDay(PageRange range, Visit visit) const {
        const std::vector<Message>& messages = conversation_.messages;
        for (std::size_t i = range.first; i < range.end; ++i) {
            if (i == range.first || !(messages[i].day == messages[i - 1].day)) visit(messages[i].day, i);
        }
    }

    void writeDays() {
        Markup content;
        content.tag("<h1>Days of <bdi>").text(name_).tag("</bdi></h1>\n");
        content.tag(R"(<p class="about"><a href=")").text(pageName(1)).tag("\">Back to the messages</a></p>\n");
        std::string month;
        for (const DayOfConversation& day : days_) {
            const std::string next = monthText(day.day);
            if (next != month) {
                if (!month.empty()) content.tag("</ul>\n");
                content.tag("<h2>").text(next).tag("</h2>\n<ul class=\"calendar\">\n");
                month = next;
            }
            addDay(content, day);
        }
        content.tag("</ul>\n");
        save("days.html", PageKind::plain, "Days of " + name_, content);
    }

    static void addDay(Markup& content, const DayOfConversation& day) {
        content.tag(R"(<li><a href=")").text(pageName(day.page)).tag("#").text(dayAnchor(day.day)).tag(R"(">)");
        content.text(longDayText(day.day)).tag(R"(</a> <span class="count">)");
        content.text(counted(static_cast<long long>(day.messages), "message", "messages")).tag("</span></li>\n");
    }

    void save(const std::string& page, PageKind kind, const std::string& title, const Markup& content) {
        folder_.write(folderOfConversation(conversation_.id) + page,
                      wholePage(kind, PagePlace::conversation, title, content));
    }

    PageFolder& folder_;
    const History& history_;
    const Conversation& conversation_;
    const std::vector<PageRange>& pages_;
    MediaFolder& media_;
    std::string name_;
    std::vector<DayOfConversation> days_;
};

}  // namespace

std::string folderOfConversation(long long id) {
    return "conversations/" + std::to_string(id) + "/";
}

std::string pageName(std::size_t page) {
    return std::to_string(page) + ".html";
}

void writeConversation(PageFolder& folder, const History& history, const Conversation& conversation,
                       const std::vector<PageRange>& pages, MediaFolder& media) {
    ConversationPages(folder, history, conversation, pages, media).write();
}

}  // namespace app::view
