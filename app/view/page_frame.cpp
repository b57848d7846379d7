#include "app/view/page_frame.h"

#include "app/view/assets.h"

namespace app::view {
namespace {

// The policy stands before anything that could load: a browser obeys it from there on.
void addHead(Markup& page, PageKind kind, const std::string& title) {
    page.tag("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n");
    page.tag(R"(<meta http-equiv="Content-Security-Policy" content=")").text(contentPolicy(kind)).tag("\">\n");
    page.tag("<meta name=\"referrer\" content=\"no-referrer\">\n");
    page.tag("<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n");
    page.tag("<meta name=\"color-scheme\" content=\"light dark\">\n");
    page.tag("<title>").text(title).tag("</title>\n");
    page.tag("<style>").asset(kStyle).tag("</style>\n</head>\n<body>\n");
}

void addNavigation(Markup& page, PagePlace place) {
    const char* top = place == PagePlace::top ? "" : "../../";
    page.tag("<a class=\"skip\" href=\"#main\">Skip to the content</a>\n");
    page.tag("<header>\n<nav class=\"site\" aria-label=\"Chat history\">");
    page.tag(R"(<a href=")").text(top).tag(R"(index.html">Conversations</a> )");
    page.tag(R"(<a href=")").text(top).tag(R"(search.html">Search</a> )");
    page.tag(R"(<a href=")").text(top).tag("statistics.html\">Statistics</a></nav>\n</header>\n");
}

}  // namespace

std::string wholePage(PageKind kind, PagePlace place, const std::string& title, const Markup& content) {
    Markup page;
    addHead(page, kind, title);
    addNavigation(page, place);
    page.tag("<main id=\"main\">\n").markup(content).tag("</main>\n");
    if (kind == PageKind::search) page.tag("<script>").asset(kSearchScript).tag("</script>\n");
    return page.tag("</body>\n</html>\n").html();
}

}  // namespace app::view
