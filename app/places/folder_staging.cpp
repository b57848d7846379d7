#include "app/places/folder_staging.h"

#include <sys/stat.h>

#include <filesystem>
#include <utility>

#include "app/base/failure.h"
#include "host/files/flush.h"

namespace app {
namespace {

namespace fs = std::filesystem;

bool isEmptyFolder(const std::string& path) {
    std::error_code error;
    return fs::is_directory(fs::symlink_status(path, error)) && fs::is_empty(path, error) && !error;
}

// Throws Failure when something stands at the target that may not.
std::string requireFree(std::string target, TargetBefore before) {
    struct stat status {};
    if (lstat(target.c_str(), &status) != 0) return target;
    const bool mayBeEmpty = before == TargetBefore::emptyFolder;
    if (mayBeEmpty && isEmptyFolder(target)) return target;
    const std::string what = mayBeEmpty ? "The target is not an empty folder, and what is there is never overwritten"
                                        : "There is something at the target already, and it is never overwritten";
    throw Failure({0, what, target, "", "move it away or remove it, or choose another --to"});
}

std::string placeOf(const std::string& target) {
    return fs::path(target).parent_path().string();
}

FailureWords busyWords(const StagedThing& thing, const std::string& place) {
    return {0, std::string("Another ") + thing.name + " is being written into this folder", place, "",
            "wait until that is done, or choose another --to"};
}

}  // namespace

FolderStaging::FolderStaging(std::string target, const StagedThing& thing)
    : thing_(thing),
      target_(requireFree(std::move(target), thing.before)),
      hidden_(placeOf(target_), thing.hiddenName, thing.name, busyWords(thing, placeOf(target_))),
      folder_(hidden_.path() + "/") {}

void FolderStaging::publish() {
    if (!tools::flushFileSystem(hidden_.place()))
        failToWrite(hidden_.place(), std::string("The ") + thing_.name + " could not be flushed to the disk");
    requireFree(target_, thing_.before);
    hidden_.publish(hidden_.path(), target_);
}

void refuseTargetInside(const std::string& from, const std::string& target) {
    if ((target + "/").compare(0, from.size() + 1, from + "/") != 0) return;
    throw Failure(
        {0, "The target lies inside the source", target, "the source is " + from, "choose a --to outside the source"});
}

}  // namespace app
