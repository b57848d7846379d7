#include "app/view/statistics_page.h"

#include <algorithm>
#include <string>

#include "app/base/units.h"
#include "app/view/clock.h"
#include "app/view/conversation_text.h"
#include "app/view/page_frame.h"

namespace app::view {
namespace {

// More bars are thinner than a point of the screen.
constexpr int kMostMonthsByDay = 24;
constexpr int kMostMonths = 360;
constexpr std::size_t kMostConversations = 20;

using ByDay = std::map<CivilDay, long long>;

enum class Step { day, month, year };

int monthNumber(const CivilDay& day) {
    return day.year * 12 + day.month - 1;
}

Step stepBetween(const CivilDay& first, const CivilDay& last) {
    const int months = monthNumber(last) - monthNumber(first) + 1;
    if (months <= kMostMonthsByDay) return Step::day;
    return months <= kMostMonths ? Step::month : Step::year;
}

// The first day of the day's step.
CivilDay beginOf(CivilDay day, Step step) {
    if (step != Step::day) day.day = 1;
    if (step == Step::year) day.month = 1;
    return day;
}

CivilDay next(CivilDay day, Step step) {
    if (step == Step::day && ++day.day <= daysOfMonth(day.year, day.month)) return day;
    day.day = 1;
    if (step != Step::year && ++day.month <= 12) return day;
    return {day.year + 1, 1, 1};
}

std::string labelOf(const CivilDay& day, Step step) {
    constexpr std::size_t kYear = 4;
    constexpr std::size_t kYearAndMonth = 7;
    std::string text = shortDayText(day);
    if (step == Step::day) return text;
    return text.substr(0, step == Step::month ? kYearAndMonth : kYear);
}

const char* titleOf(Step step) {
    if (step == Step::day) return "Messages per day";
    return step == Step::month ? "Messages per month" : "Messages per year";
}

ByDay calendarDaysOf(const ByDay& byDay) {
    ByDay days;
    for (const auto& [day, messages] : byDay) {
        if (isCalendarDay(day)) days.emplace(day, messages);
    }
    return days;
}

// Bars of equal length keep their order.
void sortLargestFirst(std::vector<Bar>& bars) {
    std::stable_sort(bars.begin(), bars.end(), [](const Bar& a, const Bar& b) { return a.value > b.value; });
}

std::vector<Bar> typeBars(const Statistics& statistics) {
    std::map<std::string, long long> byName;
    for (const auto& [type, messages] : statistics.byType)
        byName[typeText(type)] += messages;
    std::vector<Bar> bars;
    bars.reserve(byName.size());
    for (const auto& [name, messages] : byName)
        bars.push_back({name, messages});
    sortLargestFirst(bars);
    return bars;
}

std::vector<Bar> conversationBars(const History& history, const Statistics& statistics) {
    std::vector<Bar> bars;
    bars.reserve(statistics.byConversation.size());
    for (const auto& [id, messages] : statistics.byConversation)
        bars.push_back({nameOf(history, id), messages});
    sortLargestFirst(bars);
    if (bars.size() <= kMostConversations) return bars;
    Bar others{"All others", 0};
    for (std::size_t i = kMostConversations - 1; i < bars.size(); ++i)
        others.value += bars[i].value;
    bars.resize(kMostConversations - 1);
    bars.push_back(others);
    return bars;
}

std::vector<Bar> hourBars(const Statistics& statistics) {
    std::vector<Bar> bars;
    bars.reserve(statistics.byHour.size());
    for (std::size_t hour = 0; hour < statistics.byHour.size(); ++hour)
        bars.push_back({clockText({static_cast<int>(hour), 0}), statistics.byHour.at(hour)});
    return bars;
}

void addFigure(Markup& content, const char* label, const std::string& value) {
    content.tag("<div><dt>").text(label).tag("</dt><dd>").text(value).tag("</dd></div>\n");
}

void addTotals(Markup& content, const Statistics& statistics, const MediaCounts& media) {
    content.tag("<dl class=\"totals\">\n");
    addFigure(content, "Messages", grouped(statistics.messages));
    addFigure(content, "Sent by you", grouped(statistics.own));
    addFigure(content, "Received", grouped(statistics.messages - statistics.own));
    addFigure(content, "Conversations", grouped(static_cast<long long>(statistics.byConversation.size())));
    addFigure(content, "Days with messages", grouped(static_cast<long long>(statistics.byDay.size())));
    if (!statistics.byDay.empty()) {
        addFigure(content, "First day", shortDayText(statistics.byDay.begin()->first));
        addFigure(content, "Last day", shortDayText(statistics.byDay.rbegin()->first));
    }
    addFigure(content, "Attachments", grouped(media.copied));
    addFigure(content, "Attachments missing", grouped(media.missing + media.refused + media.failed));
    content.tag("</dl>\n");
}

void addPlots(Markup& content, const History& history, const Statistics& statistics) {
    const TimePlot time = messagesOverTime(statistics.byDay);
    if (!time.bars.empty()) content.markup(columnPlot("time", time.title, time.bars));
    content.markup(columnPlot("hours", "Messages per hour of the day", hourBars(statistics)));
    if (statistics.withoutTime > 0) {
        content.tag("<p>").text(counted(statistics.withoutTime, "message has", "messages have"));
        content.tag(" no time.</p>\n");
    }
    content.markup(rowPlot("Messages per conversation", conversationBars(history, statistics)));
    content.markup(rowPlot("Messages per type", typeBars(statistics)));
}

}  // namespace

TimePlot messagesOverTime(const std::map<CivilDay, long long>& byDay) {
    const ByDay days = calendarDaysOf(byDay);
    if (days.empty()) return {titleOf(Step::day), {}};
    const CivilDay last = days.rbegin()->first;
    const Step step = stepBetween(days.begin()->first, last);
    TimePlot plot{titleOf(step), {}};
    auto counted = days.begin();
    for (CivilDay day = beginOf(days.begin()->first, step); !(last < day); day = next(day, step)) {
        Bar bar{labelOf(day, step), 0};
        for (const CivilDay end = next(day, step); counted != days.end() && counted->first < end; ++counted)
            bar.value += counted->second;
        plot.bars.push_back(std::move(bar));
    }
    return plot;
}

void writeStatistics(PageFolder& folder, const History& history, const Statistics& statistics,
                     const MediaCounts& media) {
    Markup content;
    content.tag("<h1>Statistics</h1>\n");
    addTotals(content, statistics, media);
    if (statistics.messages > 0) addPlots(content, history, statistics);
    folder.write("statistics.html", wholePage(PageKind::plain, PagePlace::top, "Statistics", content));
}

}  // namespace app::view
