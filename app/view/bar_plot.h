// Plots of bars, drawn by the page itself and told in figures beside it.
#pragma once

#include <string>
#include <vector>

#include "app/view/markup.h"

namespace app::view {

struct Bar {
    std::string label;  ///< as shownLine() gives it
    long long value = 0;
};

/// Upright bars over an axis: for days and hours. `name` is a word that no other plot of the page has.
[[nodiscard]] Markup columnPlot(const std::string& name, const std::string& title, const std::vector<Bar>& bars);

/// Lying bars with their labels before them: for conversations and types.
[[nodiscard]] Markup rowPlot(const std::string& title, const std::vector<Bar>& bars);

/// A step for the marks of an axis from 0 to `most`: 1, 2 or 5 times a power of ten, and no more than five of them.
[[nodiscard]] long long stepFor(long long most);

}  // namespace app::view
