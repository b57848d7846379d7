// Line plots as SVG, both axes logarithmic.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace bench {

struct Line {
    std::string name;
    std::string colour;
    bool dashed = false;
    std::vector<std::pair<double, double>> points;
};

struct Plot {
    std::string title;
    std::string horizontal;
    std::string vertical;
    std::vector<Line> lines;
};

/// The plot as an SVG document. All coordinates of points must be positive.
std::string drawPlot(const Plot& plot);

}  // namespace bench
