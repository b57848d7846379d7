#include "app/folder_staging.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <utility>

#include "app/failure.h"
#include "host/flush.h"
#include "host/tools.h"

namespace app {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kOwnerOnly = 0700;

bool isEmptyFolder(const std::string& path) {
    std::error_code error;
    return fs::is_directory(fs::symlink_status(path, error)) && fs::is_empty(path, error) && !error;
}

}  // namespace

FolderStaging::FolderStaging(std::string target, const StagedThing& thing)
    : thing_(thing),
      target_(std::move(target)),
      parent_(fs::path(target_).parent_path().string()),
      folder_((fs::path(parent_) / thing.hiddenName / "").string()) {
    refuseTakenTarget();
    if (tools::createDir(parent_.c_str()) != 0) failOn(parent_, "The folder for the", "cannot be made");
    lock_ = tools::detail::FileHandle(open(parent_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!lock_.valid()) failOn(parent_, "The folder for the", "cannot be opened");
    // The lock ends with the process, however that ends: what is found under the hidden name then is a leftover.
    if (flock(lock_.get(), LOCK_EX | LOCK_NB) != 0) {
        throw Failure({0, std::string("Another ") + thing_.name + " is being written into this folder", parent_, "",
                       "wait until that is done, or choose another --to"});
    }
    tools::del_dir(folder_.c_str());
    if (mkdir(folder_.c_str(), kOwnerOnly) != 0) failOn(parent_, "The folder for the", "cannot be written to");
}

FolderStaging::~FolderStaging() {
    tools::del_dir(folder_.c_str());
}

void FolderStaging::publish() {
    if (!tools::flushFileSystem(parent_)) failOn(parent_, "The", "could not be flushed to the disk");
    refuseTakenTarget();
    const std::string built = folder_.substr(0, folder_.size() - 1);
    if (std::rename(built.c_str(), target_.c_str()) != 0) failOn(target_, "The", "could not get its name");
    if (fsync(lock_.get()) != 0) failOn(parent_, "The", "could not be flushed to the disk");
}

void FolderStaging::refuseTakenTarget() const {
    struct stat status {};
    if (lstat(target_.c_str(), &status) != 0) return;
    const bool mayBeEmpty = thing_.before == TargetBefore::emptyFolder;
    if (mayBeEmpty && isEmptyFolder(target_)) return;
    const std::string what = mayBeEmpty ? "The target is not an empty folder, and what is there is never overwritten"
                                        : "There is something at the target already, and it is never overwritten";
    throw Failure({0, what, target_, "", "move it away or remove it, or choose another --to"});
}

void FolderStaging::failOn(const std::string& path, const std::string& subject, const std::string& predicate) const {
    failToWrite(path, subject + " " + thing_.name + " " + predicate);
}

void refuseTargetInside(const std::string& from, const std::string& target) {
    if ((target + "/").compare(0, from.size() + 1, from + "/") != 0) return;
    throw Failure(
        {0, "The target lies inside the source", target, "the source is " + from, "choose a --to outside the source"});
}

}  // namespace app
