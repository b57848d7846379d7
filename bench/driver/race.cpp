#include "bench/driver/race.h"

#include <algorithm>
#include <cstdio>

namespace bench {

double Costs::fastest() const {
    double least = rounds_.empty() ? 0 : rounds_.front().cpu;
    for (const Cost& cost : rounds_)
        least = std::min(least, cost.cpu);
    return least;
}

double Costs::median(double Cost::*member) const {
    std::vector<double> values;
    for (const Cost& cost : rounds_)
        values.push_back(cost.*member);
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

void race(const std::string& prefix, const std::vector<Contender>& contenders, int rounds, Results& results,
          const std::function<void()>& check) {
    std::fprintf(stderr, "%s", prefix.c_str());
    // What an earlier run left is not mixed with this one.
    for (const Contender& contender : contenders)
        results.erase(prefix + " " + contender.name);
    for (int round = 0; round < rounds; ++round) {
        std::fputc('.', stderr);
        for (const Contender& contender : contenders) {
            const Command command = contender.prepare();
            results[prefix + " " + contender.name].add(runProcess(command));
        }
        if (round == 0 && check) check();
    }
    std::fputc('\n', stderr);
}

}  // namespace bench
