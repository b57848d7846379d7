#include "app/places/hidden_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <utility>

#include "host/tools.h"

namespace app {

HiddenFolder::HiddenFolder(std::string place, const std::string& name, std::string thing, const FailureWords& whenBusy)
    : place_(std::move(place)), path_((std::filesystem::path(place_) / name).string()), thing_(std::move(thing)) {
    const std::string folder = "The folder for the " + thing_;
    if (tools::createDir(place_.c_str()) != 0) failToWrite(place_, folder + " cannot be made");
    lock_ = tools::detail::FileHandle(open(place_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!lock_.valid()) failToWrite(place_, folder + " cannot be opened");
    // The lock ends with the process, however that ends: what is found under the hidden name then is a leftover.
    if (flock(lock_.get(), LOCK_EX | LOCK_NB) != 0) throw Failure(whenBusy);
    tools::del_dir(path_.c_str());
    constexpr mode_t kOwnerOnly = 0700;
    if (mkdir(path_.c_str(), kOwnerOnly) != 0) failToWrite(place_, folder + " cannot be written to");
}

HiddenFolder::~HiddenFolder() {
    tools::del_dir(path_.c_str());
}

void HiddenFolder::publish(const std::string& built, const std::string& finalName) const {
    if (std::rename(built.c_str(), finalName.c_str()) != 0)
        failToWrite(finalName, "The " + thing_ + " could not get its name");
    if (fsync(lock_.get()) != 0) failToWrite(place_, "The " + thing_ + " could not be flushed to the disk");
}

}  // namespace app
