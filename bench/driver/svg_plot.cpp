#include "bench/driver/svg_plot.h"

#include <algorithm>
#include <cmath>

#include "host/base/fixed_text.h"

namespace bench {
namespace {

constexpr double kWidth = 720;
constexpr double kHeight = 440;
constexpr double kLeft = 80;
constexpr double kRight = 170;
constexpr double kTop = 50;
constexpr double kBottom = 60;

std::string number(double value) {
    return tools::FixedText<32>("%.1f", value).text();
}

// 0.001 as "0.001", 1000 as "1k".
std::string tickName(double value) {
    if (value >= 1e6) return tools::FixedText<32>("%gM", value / 1e6).text();
    if (value >= 1e3) return tools::FixedText<32>("%gk", value / 1e3).text();
    return tools::FixedText<32>("%g", value).text();
}

// Whole decades around the values, laid over a range of pixels.
class Axis {
public:
    Axis(double smallest, double largest, double begin, double end)
        : low_(std::floor(std::log10(smallest) + 1e-9)),
          high_(std::max(std::ceil(std::log10(largest) - 1e-9), low_ + 1)),
          begin_(begin),
          end_(end) {}

    double at(double value) const { return begin_ + (std::log10(value) - low_) / (high_ - low_) * (end_ - begin_); }

    std::vector<double> ticks() const {
        std::vector<double> values;
        const int decades = static_cast<int>(high_ - low_);
        values.reserve(static_cast<std::size_t>(decades) + 1);
        for (int decade = 0; decade <= decades; ++decade)
            values.push_back(std::pow(10.0, low_ + decade));
        return values;
    }

private:
    double low_;
    double high_;
    double begin_;
    double end_;
};

std::string text(double x, double y, const std::string& anchor, const std::string& words) {
    return "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\" text-anchor=\"" + anchor + "\">" + words +
           "</text>\n";
}

std::string gridLine(double x1, double y1, double x2, double y2) {
    return "<line x1=\"" + number(x1) + "\" y1=\"" + number(y1) + "\" x2=\"" + number(x2) + "\" y2=\"" + number(y2) +
           "\" stroke=\"#ccc\"/>\n";
}

std::string drawGrid(const Axis& x, const Axis& y) {
    std::string svg;
    for (const double tick : x.ticks()) {
        svg += gridLine(x.at(tick), kTop, x.at(tick), kHeight - kBottom);
        svg += text(x.at(tick), kHeight - kBottom + 20, "middle", tickName(tick));
    }
    for (const double tick : y.ticks()) {
        svg += gridLine(kLeft, y.at(tick), kWidth - kRight, y.at(tick));
        svg += text(kLeft - 8, y.at(tick) + 4, "end", tickName(tick));
    }
    return svg;
}

std::string drawLine(const Line& line, const Axis& x, const Axis& y, double legendY) {
    std::string points;
    std::string marks;
    for (const auto& [horizontal, vertical] : line.points) {
        const std::string px = number(x.at(horizontal));
        const std::string py = number(y.at(vertical));
        points += px + "," + py + " ";
        marks += R"(<circle cx=")" + px + R"(" cy=")" + py + R"(" r="3" fill=")" + line.colour + R"("/>)" + "\n";
    }
    const std::string style = R"( stroke=")" + line.colour + R"(" stroke-width="2" fill="none")" +
                              (line.dashed ? R"( stroke-dasharray="6 4")" : "") + "/>\n";
    const double legendX = kWidth - kRight + 14;
    return "<polyline points=\"" + points + "\"" + style + marks + "<path d=\"M" + number(legendX) + " " +
           number(legendY - 4) + " h24\"" + style + text(legendX + 30, legendY, "start", line.name);
}

}  // namespace

std::string drawPlot(const Plot& plot) {
    double left = 1e300;
    double right = 0;
    double low = 1e300;
    double high = 0;
    for (const Line& line : plot.lines) {
        for (const auto& [x, y] : line.points) {
            left = std::min(left, x);
            right = std::max(right, x);
            low = std::min(low, y);
            high = std::max(high, y);
        }
    }
    if (right == 0) left = right = low = high = 1;
    const Axis x(left, right, kLeft, kWidth - kRight);
    const Axis y(low, high, kHeight - kBottom, kTop);
    std::string svg = R"(<svg xmlns="http://www.w3.org/2000/svg" width=")" + number(kWidth) + R"(" height=")" +
                      number(kHeight) + R"(" font-family="sans-serif" font-size="12">)" + "\n" +
                      R"(<rect width="100%" height="100%" fill="white"/>)" + "\n" + drawGrid(x, y) +
                      text(kLeft, 28, "start", plot.title) +
                      text((kLeft + kWidth - kRight) / 2, kHeight - 18, "middle", plot.horizontal);
    svg += R"(<text transform="translate(18 )" + number(kHeight / 2) + R"lit() rotate(-90)" text-anchor="middle">)lit" +
           plot.vertical + "</text>\n";
    double legend = kTop + 12;
    for (const Line& line : plot.lines) {
        svg += drawLine(line, x, y, legend);
        legend += 20;
    }
    return svg + "</svg>\n";
}

}  // namespace bench
