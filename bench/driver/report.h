// What a run leaves behind: a Markdown report, the raw figures as JSON, and two plots.
#pragma once

#include <string>

#include "bench/driver/stages.h"
#include "bench/driver/table.h"

namespace bench {

struct Report {
    std::vector<std::pair<std::string, std::string>> machine;
    std::vector<Row> rows;
    std::vector<Row> peers;
    std::vector<Row> disk;
};

/// The tables as Markdown.
std::string toMarkdown(const Report& report, const Settings& settings);

/// Everything that was measured, every round of it, and the rows.
std::string toJson(const Report& report, const Settings& settings, const Results& results);

/// CPU time, and peak memory, against the number of messages.
std::string timePlot(const Settings& settings, const Results& results);
std::string memoryPlot(const Settings& settings, const Results& results);

void writeText(const std::string& path, const std::string& text);

/// Replaces what stands between the lines "<!-- bench:begin -->" and "<!-- bench:end -->" of a file.
void replaceMarked(const std::string& path, const std::string& text);

}  // namespace bench
