#include "app/view/bar_plot.h"

#include <algorithm>
#include <cmath>

#include "app/base/units.h"
#include "host/base/fixed_text.h"

namespace app::view {
namespace {

// The drawing's own units; the page scales it.
constexpr double kWidth = 720;
constexpr double kHeight = 220;
constexpr double kLeft = 56;    // for the figures of the axis
constexpr double kBottom = 24;  // for the labels
constexpr double kTop = 8;
constexpr std::size_t kMostLabels = 8;

long long mostOf(const std::vector<Bar>& bars) {
    long long most = 0;
    for (const Bar& bar : bars)
        most = std::max(most, bar.value);
    return most;
}

// Coordinates: one digit behind the point, whatever the locale.
std::string coordinate(double value) {
    const auto tenths = std::llround(value * 10);
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
}

class Columns {
public:
    explicit Columns(const std::vector<Bar>& bars)
        : bars_(bars), step_(stepFor(mostOf(bars))), top_(roundedUp(mostOf(bars))) {}

    void draw(Markup& svg) const {
        for (long long mark = 0; mark <= top_; mark += step_)
            drawMark(svg, mark);
        for (std::size_t i = 0; i < bars_.size(); ++i)
            drawBar(svg, i);
        const std::size_t between = (bars_.size() + kMostLabels - 1) / kMostLabels;
        for (std::size_t i = 0; i < bars_.size(); i += between)
            drawLabel(svg, i);
    }

private:
    long long roundedUp(long long most) const { return std::max(1LL, (most + step_ - 1) / step_) * step_; }

    double heightOf(long long value) const {
        return (kHeight - kBottom - kTop) * static_cast<double>(value) / static_cast<double>(top_);
    }
    double slot() const { return (kWidth - kLeft) / static_cast<double>(bars_.size()); }
    double leftOf(std::size_t i) const { return kLeft + slot() * static_cast<double>(i); }

    void drawMark(Markup& svg, long long mark) const {
        const std::string y = coordinate(kHeight - kBottom - heightOf(mark));
        svg.tag(R"(<line class="grid" x1=")").text(coordinate(kLeft)).tag(R"(" x2=")").text(coordinate(kWidth));
        svg.tag(R"(" y1=")").text(y).tag(R"(" y2=")").text(y).tag(R"("/>)");
        svg.tag(R"(<text class="mark" x=")").text(coordinate(kLeft - 6)).tag(R"(" y=")").text(y);
        svg.tag(R"(" dy="4" text-anchor="end">)").text(grouped(mark)).tag("</text>\n");
    }

    void drawBar(Markup& svg, std::size_t i) const {
        const double height = heightOf(bars_[i].value);
        const double gap = slot() > 4 ? slot() * 0.15 : 0;
        svg.tag(R"(<rect x=")").text(coordinate(leftOf(i) + gap / 2)).tag(R"(" y=")");
        svg.text(coordinate(kHeight - kBottom - height)).tag(R"(" width=")").text(coordinate(slot() - gap));
        svg.tag(R"(" height=")").text(coordinate(height)).tag(R"("><title>)").text(bars_[i].label).tag(": ");
        svg.text(grouped(bars_[i].value)).tag("</title></rect>\n");
    }

    // A label stands below the middle of its bar, the first one not outside of the drawing.
    void drawLabel(Markup& svg, std::size_t i) const {
        svg.tag(R"(<text class="label" x=")").text(coordinate(leftOf(i) + slot() / 2)).tag(R"(" y=")");
        svg.text(coordinate(kHeight - 6)).tag(R"(" text-anchor="middle">)").text(bars_[i].label).tag("</text>\n");
    }

    const std::vector<Bar>& bars_;
    long long step_;
    long long top_;
};

void addFigures(Markup& plot, const std::vector<Bar>& bars) {
    plot.tag("<details><summary>In figures</summary><table class=\"figures\">\n");
    for (const Bar& bar : bars) {
        plot.tag(R"(<tr><th scope="row">)").text(bar.label).tag("</th><td>").text(grouped(bar.value));
        plot.tag("</td></tr>\n");
    }
    plot.tag("</table></details>\n");
}

// A drawing as wide as its cell, stretched: the browser does the arithmetic.
void addRow(Markup& plot, const Bar& bar, long long most) {
    constexpr double kFull = 100;
    const double share = kFull * static_cast<double>(bar.value) / static_cast<double>(std::max(1LL, most));
    plot.tag(R"(<tr><th scope="row"><bdi>)").text(bar.label).tag(R"(</bdi></th><td class="value">)");
    plot.text(grouped(bar.value)).tag(R"(</td><td class="bar">)");
    plot.tag(R"(<svg viewBox="0 0 100 1" preserveAspectRatio="none" aria-hidden="true"><rect width=")");
    plot.text(coordinate(share)).tag("\" height=\"1\"/></svg></td></tr>\n");
}

}  // namespace

long long stepFor(long long most) {
    constexpr long long kMostSteps = 5;
    long long power = 1;
    for (;; power *= 10) {
        for (const long long factor : {1LL, 2LL, 5LL}) {
            if (most <= kMostSteps * factor * power) return factor * power;
        }
    }
}

Markup columnPlot(const std::string& name, const std::string& title, const std::vector<Bar>& bars) {
    Markup plot;
    plot.tag(R"(<section class="plot"><h2 id="plot-)").text(name).tag(R"(">)").text(title).tag("</h2>\n");
    plot.tag(R"(<svg class="columns" role="img" aria-labelledby="plot-)").text(name);
    plot.tag("\" viewBox=\"0 0 720 220\">\n");
    Columns(bars).draw(plot);
    plot.tag("</svg>\n");
    addFigures(plot, bars);
    return plot.tag("</section>\n");
}

Markup rowPlot(const std::string& title, const std::vector<Bar>& bars) {
    const long long most = mostOf(bars);
    Markup plot;
    plot.tag(R"(<section class="plot"><h2>)").text(title).tag("</h2>\n<table class=\"rows\">\n");
    for (const Bar& bar : bars)
        addRow(plot, bar, most);
    return plot.tag("</table></section>\n");
}

}  // namespace app::view
