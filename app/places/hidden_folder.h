// The hidden folder in which something is built before it gets its name.
#pragma once

#include <string>

#include "app/base/failure.h"
#include "host/files/file_handle.h"

namespace app {

/// An empty folder beside the final name. Nobody else builds in the same place meanwhile, and it goes when this object
/// does; a crash leaves it at most, and the next one of its name in the same place removes it.
class HiddenFolder {
public:
    /// Makes `place` where it is missing, and in it the folder `name`. `thing` is what will be built, as messages call
    /// it: "tree". Throws Failure: `whenBusy` when another process is building in this place.
    HiddenFolder(std::string place, const std::string& name, std::string thing, const FailureWords& whenBusy);
    ~HiddenFolder();
    HiddenFolder(const HiddenFolder&) = delete;
    HiddenFolder& operator=(const HiddenFolder&) = delete;
    HiddenFolder(HiddenFolder&&) = delete;
    HiddenFolder& operator=(HiddenFolder&&) = delete;

    const std::string& place() const { return place_; }
    const std::string& path() const { return path_; }

    /// Gives `built`, the folder itself or one in it, its final name in the place, and brings that to the disk. Throws
    /// Failure.
    void publish(const std::string& built, const std::string& finalName) const;

private:
    std::string place_;
    std::string path_;
    std::string thing_;
    tools::detail::FileHandle lock_;
};

}  // namespace app
