#include "app/view/pager.h"

#include "app/base/units.h"

namespace app::view {
namespace {

// A place that cannot be gone to keeps its room, so that the links do not move from page to page.
void addLink(Markup& markup, bool there, const std::string& name, const char* label, const char* relation) {
    if (!there) {
        markup.tag(R"(<span class="off">)").text(label).tag("</span> ");
        return;
    }
    markup.tag(R"(<a href=")").text(name).tag("\"");
    if (*relation != '\0') markup.tag(R"( rel=")").text(relation).tag("\"");
    markup.tag(">").text(label).tag("</a> ");
}

}  // namespace

std::vector<PageRange> pagesOf(const std::vector<Message>& messages) {
    std::vector<PageRange> pages;
    std::size_t text = 0;
    for (std::size_t i = 0; i < messages.size(); ++i) {
        text += messages[i].body.size();
        const bool full = !pages.empty() && (i - pages.back().first == kMessagesOnAPage || text > kTextOnAPage);
        if (pages.empty() || full) {
            pages.push_back({i, i});
            text = messages[i].body.size();
        }
        pages.back().end = i + 1;
    }
    return pages;
}

Markup pagerOf(std::size_t page, std::size_t pages, const std::function<std::string(std::size_t)>& nameOf) {
    Markup markup;
    if (pages < 2) return markup;
    markup.tag(R"(<nav class="pager" aria-label="Pages">)");
    addLink(markup, page > 1, nameOf(1), "First", "");
    addLink(markup, page > 1, nameOf(page - 1), "Previous", "prev");
    markup.tag(R"(<span aria-current="page">Page )").text(grouped(static_cast<long long>(page)));
    markup.tag(" of ").text(grouped(static_cast<long long>(pages))).tag("</span> ");
    addLink(markup, page < pages, nameOf(page + 1), "Next", "next");
    addLink(markup, page < pages, nameOf(pages), "Last", "");
    return markup.tag("</nav>\n");
}

}  // namespace app::view
