#include "app/report/report_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "app/base/failure.h"
#include "app/base/paths.h"
#include "app/report/run_report.h"

namespace app {
namespace {

[[noreturn]] void refuse(const std::string& path, const std::string& reason, const std::string& remedy) {
    throw Failure({0, "The report cannot be written there; nothing was done", path, reason, remedy});
}

// A name that was mistyped must not cost somebody a database. An empty file holds nothing that could be lost: scripts
// make one for the name.
bool isReplaceable(int folder, const std::string& name) {
    constexpr off_t kLargest = off_t{256} << 20;
    const tools::detail::FileHandle file = tools::detail::openRegularFile(folder, name.c_str(), false);
    struct stat status {};
    if (!file.valid() || fstat(file.get(), &status) != 0 || status.st_size > kLargest) return false;
    std::string text;
    return tools::detail::readAll(file.get(), text) && (text.empty() || isRunReport(text));
}

bool isTaken(int folder, const std::string& name) {
    struct stat status {};
    return fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

}  // namespace

ReportFile::ReportFile(const std::string& given) {
    const std::filesystem::path path = resolvedPath(given);
    path_ = path.string();
    const std::string name = path.filename().string();
    folder_ = tools::detail::openFolder(AT_FDCWD, path.parent_path().c_str());
    if (!folder_.valid()) refuse(path_, systemWords(errno), "give a file in a folder that exists");
    if (isTaken(folder_.get(), name) && !isReplaceable(folder_.get(), name))
        refuse(path_, "there is something that is no earlier report", "choose another name");
    file_ = std::make_unique<tools::detail::NewFile>(folder_.get(), name);
    if (!file_->valid()) refuse(path_, systemWords(errno), "choose a place that you may write to");
}

void ReportFile::write(const std::string& json) {
    if (tools::detail::writeAll(file_->get(), json.data(), json.size()) && file_->commit()) return;
    throw Failure({0, "The report could not be written; what the command did stays done", path_, systemWords(errno),
                   "check that the disk is not full"});
}

}  // namespace app
