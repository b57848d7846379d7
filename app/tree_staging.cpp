#include "app/tree_staging.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "app/failure.h"
#include "host/flush.h"
#include "host/tools.h"

namespace app {
namespace {

constexpr const char* kStagingName = "/.chat-transfer-tree.part";
constexpr mode_t kOwnerOnly = 0700;

[[noreturn]] void failOn(const std::string& path, const std::string& what) {
    throw Failure({0, what, path, systemWords(errno), "check that the place can be written to and is not full"});
}

}  // namespace

TreeStaging::TreeStaging(std::string target)
    : target_(std::move(target)),
      parent_(std::filesystem::path(target_).parent_path().string()),
      folder_(parent_ + kStagingName + "/") {
    refuseExistingTarget();
    if (tools::createDir(parent_.c_str()) != 0) failOn(parent_, "The folder for the tree cannot be made");
    lock_ = tools::detail::FileHandle(open(parent_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!lock_.valid()) failOn(parent_, "The folder for the tree cannot be opened");
    // The lock ends with the process, however that ends: what is found under the staging name then is a leftover.
    if (flock(lock_.get(), LOCK_EX | LOCK_NB) != 0) {
        throw Failure({0, "Another tree is being written into this folder", parent_, "",
                       "wait until that is done, or choose another --to"});
    }
    tools::del_dir(folder_.c_str());
    if (mkdir(folder_.c_str(), kOwnerOnly) != 0) failOn(parent_, "The folder for the tree cannot be written to");
}

TreeStaging::~TreeStaging() {
    tools::del_dir(folder_.c_str());
}

void TreeStaging::publish() {
    if (!tools::flushFileSystem(parent_)) failOn(parent_, "The tree could not be flushed to the disk");
    refuseExistingTarget();
    if (std::rename((parent_ + kStagingName).c_str(), target_.c_str()) != 0)
        failOn(target_, "The tree could not get its name");
    if (fsync(lock_.get()) != 0) failOn(parent_, "The tree could not be flushed to the disk");
}

void TreeStaging::refuseExistingTarget() const {
    struct stat status {};
    if (lstat(target_.c_str(), &status) != 0) return;
    throw Failure({0, "There is something at the target already, and it is never overwritten", target_, "",
                   "move it away or remove it, or choose another --to"});
}

void refuseTargetInside(const std::string& from, const std::string& target) {
    if ((target + "/").compare(0, from.size() + 1, from + "/") != 0) return;
    throw Failure(
        {0, "The target lies inside the source", target, "the source is " + from, "choose a --to outside the source"});
}

}  // namespace app
