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
    std::vector<Row> treeImport;
    std::string treeImportTitle;
};

/// The tables as Markdown.
std::string toMarkdown(const Report& report, const Settings& settings);

/// Everything that was measured, every round of it, and the rows.
std::string toJson(const Report& report, const Settings& settings, const Results& results);

/// The costs that toJson() wrote. Throws when there are none.
Results readResults(const std::string& path);

/// CPU time, and peak memory, against the number of messages.
std::string timePlot(const Settings& settings, const Results& results);
std::string memoryPlot(const Settings& settings, const Results& results);

void writeText(const std::string& path, const std::string& text);

/// Writes the page at `path`: the text of `pattern` with the tables in the place of "@TABLES@". So the page exists only
/// with figures that were measured.
void writePage(const std::string& path, const std::string& pattern, const std::string& tables);

}  // namespace bench
