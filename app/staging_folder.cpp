#include "app/staging_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "app/failure.h"
#include "app/paths.h"
#include "host/tools.h"
#include "transfer/error_codes.h"

namespace app {
namespace {

namespace fs = std::filesystem;
using tools::detail::FileHandle;

constexpr const char* kPackageName = "qelmsg_0";
constexpr const char* kStagingName = ".chat-transfer.part";
constexpr mode_t kOwnerOnly = 0700;

FileHandle openFolder(const std::string& path) {
    return FileHandle(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

bool flush(const std::string& folder) {
    const FileHandle handle = openFolder(folder);
    return handle.valid() && fsync(handle.get()) == 0;
}

void flushFolders(const std::string& root) {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
        if (entry.is_directory() && !entry.is_symlink() && !flush(entry.path().string())) {
            failToWrite(entry.path().string(), "The package could not be flushed to the disk");
        }
    }
    if (!flush(root)) failToWrite(root, "The package could not be flushed to the disk");
}

}  // namespace

StagingFolder::StagingFolder(const std::string& target)
    : target_(resolvedPath(target).string()),
      package_((fs::path(target_) / kPackageName).string()),
      path_((fs::path(target_) / kStagingName).string()) {
    if (tools::createDir(target_.c_str()) != 0) failToWrite(target_, "The folder for the package cannot be made");
    refuseExistingPackage();
    lock_ = openFolder(target_);
    if (!lock_.valid()) failToWrite(target_, "The folder for the package cannot be opened");
    // The lock ends with the process, however that ends: what is found under the staging name then is a leftover.
    if (flock(lock_.get(), LOCK_EX | LOCK_NB) != 0) {
        throw Failure(
            {0, "Another export into this folder is at work", target_, "", "wait for it, or choose another --to"});
    }
    tools::del_dir(path_.c_str());
    if (mkdir(path_.c_str(), kOwnerOnly) != 0) failToWrite(target_, "The folder for the package cannot be written to");
}

StagingFolder::~StagingFolder() {
    tools::del_dir(path_.c_str());
}

void StagingFolder::enter() const {
    if (chdir(path_.c_str()) != 0) failToWrite(path_, "The folder for the package cannot be entered");
}

void StagingFolder::publish() {
    const std::string built = path_ + "/" + kPackageName;
    flushFolders(built);
    refuseExistingPackage();
    if (std::rename(built.c_str(), package_.c_str()) != 0) failToWrite(package_, "The package could not get its name");
    if (fsync(lock_.get()) != 0) failToWrite(target_, "The package could not be flushed to the disk");
}

void StagingFolder::refuseExistingPackage() const {
    struct stat status {};
    if (lstat(package_.c_str(), &status) != 0) return;
    throw Failure({transfer::kPackageExists, "The export is refused", package_, "",
                   "move the package away or remove it, or choose another --to"});
}

}  // namespace app
