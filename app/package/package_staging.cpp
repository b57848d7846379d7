#include "app/package/package_staging.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "app/base/failure.h"
#include "app/base/paths.h"
#include "transfer/error_codes.h"
#include "transfer/format/package_format.h"

namespace app {
namespace {

namespace fs = std::filesystem;

constexpr const char* kStagingName = ".chat-transfer.part";

bool flush(const std::string& folder) {
    const tools::detail::FileHandle handle(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return handle.valid() && fsync(handle.get()) == 0;
}

void flushFolders(const std::string& root) {
    constexpr const char* kWhat = "The package could not be flushed to the disk";
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
        if (entry.is_directory() && !entry.is_symlink() && !flush(entry.path().string()))
            failToWrite(entry.path().string(), kWhat);
    }
    if (!flush(root)) failToWrite(root, kWhat);
}

// Throws Failure when there is a package already.
std::string requireFree(std::string package) {
    struct stat status {};
    if (lstat(package.c_str(), &status) != 0) return package;
    throw Failure({chattransfer::kPackageExists, "The export is refused", package, "",
                   "move the package away or remove it, or choose another --to"});
}

}  // namespace

PackageStaging::PackageStaging(const std::string& target)
    : target_(resolvedPath(target).string()),
      package_(requireFree((fs::path(target_) / chattransfer::kPackageName).string())),
      hidden_(target_, kStagingName, "package",
              {0, "Another export into this folder is at work", target_, "", "wait for it, or choose another --to"}) {}

void PackageStaging::enter() const {
    if (chdir(hidden_.path().c_str()) != 0) failToWrite(hidden_.path(), "The folder for the package cannot be entered");
}

void PackageStaging::publish() {
    const std::string built = hidden_.path() + "/" + chattransfer::kPackageName;
    flushFolders(built);
    requireFree(package_);
    hidden_.publish(built, package_);
}

}  // namespace app
