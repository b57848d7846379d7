// Interleaved rounds: contenders take turns, so that whatever else the machine does falls on all of them.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "bench/driver/process.h"

namespace bench {

struct Contender {
    std::string name;
    /// Makes everything that the command needs, outside the measured span.
    std::function<Command()> prepare;
};

/// All costs of one contender in one race, with their medians. Where other guests share the machine, its speed changes
/// from one run to the next; the fastest run is the one that they disturbed least.
class Costs {
public:
    void add(const Cost& cost) { rounds_.push_back(cost); }
    const std::vector<Cost>& rounds() const { return rounds_; }
    double cpu() const { return median(&Cost::cpu); }
    double wall() const { return median(&Cost::wall); }
    double memory() const { return median(&Cost::memory); }
    double fastest() const;  ///< the least CPU time

private:
    double median(double Cost::*member) const;

    std::vector<Cost> rounds_;
};

/// Costs by the name of what was measured, for example "export 100000 floor".
using Results = std::map<std::string, Costs>;

/// Runs all contenders `rounds` times in turn and files their costs under `prefix` + " " + name. After the first round
/// `check` compares what they left behind.
void race(const std::string& prefix, const std::vector<Contender>& contenders, int rounds, Results& results,
          const std::function<void()>& check = {});

}  // namespace bench
