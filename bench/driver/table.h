// The rows of the comparison: which measured costs stand over which, and how far we want to get.
#pragma once

#include <string>
#include <vector>

#include "bench/driver/stages.h"

namespace bench {

struct Row {
    std::string work;
    std::string naive;  ///< what the straightforward design was measured at, before the first line was written
    std::string reach;  ///< what we want
    std::string here;   ///< what this run gave
    std::string sides;  ///< both sides of the figure
    bool reached = false;
    std::string fastest = {};  ///< the figure of the fastest runs of both
};

/// Rows whose costs were not measured are left out.
std::vector<Row> makeTable(const Settings& settings, const Results& results);

/// What the peers cost as ratios to the floor; no reach is set for them.
std::vector<Row> makePeerTable(const Settings& settings, const Results& results);

/// The parts of a tree import in CPU and wall time.
std::vector<Row> makeTreeImportTable(const Results& results);

/// What an import asks of the disk.
std::vector<Row> makeDiskTable(const ImportWrites& writes);

/// A figure with two or three significant digits.
std::string shortNumber(double value);

/// Seconds as "1.23 s" or "45 ms".
std::string duration(double seconds);

}  // namespace bench
