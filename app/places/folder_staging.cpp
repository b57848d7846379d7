#include "app/places/folder_staging.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <utility>

#include "host/files/flush.h"
#include "host/files/folder_walk.h"
#include "host/files/temporary_name.h"
#include "host/tools.h"

namespace app {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void failAt(FailureWords words, const std::string& path) {
    words.path = path;
    throw Failure(std::move(words));
}

bool isEmptyFolder(const std::string& path) {
    std::error_code error;
    return fs::is_directory(fs::symlink_status(path, error)) && fs::is_empty(path, error) && !error;
}

// Throws Failure when something stands at the target that may not.
void requireFree(const std::string& target, const StagedThing& thing) {
    if (tools::statusOf(target).error != 0) return;
    if (thing.before == TargetBefore::nothing || !isEmptyFolder(target)) failAt(thing.whenTaken, target);
}

void flushFolder(tools::FolderWalk& walk, const std::string& whatFailed) {
    const bool flushed = tools::flushFolder(walk.path());
    if (!flushed || walk.enter() != 0) failToWrite(walk.path(), whatFailed);
}

void flushFolders(const std::string& root, const std::string& whatFailed) {
    tools::FolderWalk walk(root);
    flushFolder(walk, whatFailed);
    while (walk.next()) {
        if (walk.status().kind == tools::FileKind::folder) flushFolder(walk, whatFailed);
    }
}

}  // namespace

StagedThing stagedTree() {
    return {"tree",
            tools::temporaryName("tree"),
            "",
            TargetBefore::nothing,
            FilesFlushed::byStaging,
            {0, "There is something at the target already, and it is never overwritten", "", "",
             "move it away or remove it, or choose another --to"},
            {0, "Another tree is being written into this folder", "", "",
             "wait until that is done, or choose another --to"}};
}

FolderStaging::FolderStaging(std::string target, StagedThing thing)
    : thing_(std::move(thing)),
      target_(std::move(target)),
      place_(fs::path(target_).parent_path().string()),
      hidden_((fs::path(place_) / thing_.hiddenName).string()) {
    requireFree(target_, thing_);
    lockPlace();
    tools::del_dir(hidden_.c_str());
    makeFolder();
}

FolderStaging::~FolderStaging() {
    tools::del_dir(hidden_.c_str());
}

// The lock ends with the process, however that ends: what is found under the hidden name then is a leftover.
void FolderStaging::lockPlace() {
    const std::string folder = "The folder for the " + thing_.name;
    if (tools::createDir(place_.c_str()) != 0) failToWrite(place_, folder + " cannot be made");
    lock_ = tools::detail::openFolder(AT_FDCWD, place_.c_str());
    if (!lock_.valid()) failToWrite(place_, folder + " cannot be opened");
    if (flock(lock_.get(), LOCK_EX | LOCK_NB) != 0) failAt(thing_.whenBusy, place_);
}

void FolderStaging::makeFolder() const {
    constexpr mode_t kOwnerOnly = 0700;
    if (mkdir(hidden_.c_str(), kOwnerOnly) != 0)
        failToWrite(place_, "The folder for the " + thing_.name + " cannot be written to");
}

void FolderStaging::enter() const {
    if (chdir(hidden_.c_str()) != 0) failToWrite(hidden_, "The folder for the " + thing_.name + " cannot be entered");
}

void FolderStaging::publish() {
    const std::string thing = "The " + thing_.name;
    const std::string notFlushed = thing + " could not be flushed to the disk";
    const std::string built = hidden_ + thing_.built;
    if (thing_.files == FilesFlushed::byWriter) {
        flushFolders(built, notFlushed);
    } else if (!tools::flushFileSystem(place_)) {
        failToWrite(place_, notFlushed);
    }
    requireFree(target_, thing_);
    if (std::rename(built.c_str(), target_.c_str()) != 0) failToWrite(target_, thing + " could not get its name");
    if (fsync(lock_.get()) != 0) failToWrite(place_, notFlushed);
}

void refuseTargetInside(const std::string& from, const std::string& target) {
    if ((target + "/").compare(0, from.size() + 1, from + "/") != 0) return;
    throw Failure(
        {0, "The target lies inside the source", target, "the source is " + from, "choose a --to outside the source"});
}

}  // namespace app
