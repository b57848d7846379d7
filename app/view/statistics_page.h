// The page of statistics.
#pragma once

#include <vector>

#include "app/view/bar_plot.h"
#include "app/view/media_folder.h"
#include "app/view/page_folder.h"
#include "app/view/statistics.h"

namespace app::view {

/// Writes statistics.html. Throws Failure.
void writeStatistics(PageFolder& folder, const History& history, const Statistics& statistics,
                     const MediaCounts& media);

/// Messages over time, without gaps: by day, and where these are too many for a plot by month or by year. Days that no
/// calendar has are left out.
struct TimePlot {
    const char* title;
    std::vector<Bar> bars;
};
[[nodiscard]] TimePlot messagesOverTime(const std::map<CivilDay, long long>& byDay);

}  // namespace app::view
