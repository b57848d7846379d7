// A run that changes no file, and still counts as a real one would.
//
// Threads: an object belongs to one thread at a time.
#pragma once

#include <map>
#include <string>

namespace tools {

/// What copies, moves and new folders would have changed. Names are full paths.
class Rehearsal {
public:
    void appear(const std::string& path) { changed_[path] = true; }
    void vanish(const std::string& path) { changed_[path] = false; }
    [[nodiscard]] bool hasAppeared(const std::string& path) const { return isChanged(path, true); }
    [[nodiscard]] bool hasVanished(const std::string& path) const { return isChanged(path, false); }

private:
    [[nodiscard]] bool isChanged(const std::string& path, bool there) const {
        const auto found = changed_.find(path);
        return found != changed_.end() && found->second == there;
    }

    std::map<std::string, bool> changed_;  // and whether it would be there now
};

}  // namespace tools
