// How long the phases of a command take.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "app/base/stopwatch.h"

namespace app {

/// A phase lasts until the next one begins, or until end().
class PhaseTimes {
public:
    struct Phase {
        std::string name;  ///< as the progress shows it
        double seconds = 0;
    };

    void begin(std::string name) {
        end();
        open_ = true;
        begun_ = Stopwatch();
        phases_.push_back({std::move(name), 0});
    }

    void end() {
        if (open_) phases_.back().seconds = begun_.seconds();
        open_ = false;
    }

    [[nodiscard]] const std::vector<Phase>& phases() const { return phases_; }

private:
    std::vector<Phase> phases_;
    Stopwatch begun_;
    bool open_ = false;
};

}  // namespace app
