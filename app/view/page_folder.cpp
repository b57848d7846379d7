#include "app/view/page_folder.h"

#include <cerrno>

#include "app/failure.h"
#include "host/tools.h"
#include "host/whole_file.h"

namespace app::view {
namespace {

[[noreturn]] void failOn(const std::string& path, const std::string& what) {
    throw Failure({0, what, path, systemWords(errno), "check that the place can be written to and is not full"});
}

}  // namespace

void PageFolder::makeFolder(const std::string& name) {
    const std::string path = path_ + name;
    if (tools::createDir(path.c_str()) != 0) failOn(path, "A folder for the pages cannot be made");
}

void PageFolder::write(const std::string& name, std::string_view bytes) {
    const std::string path = path_ + name;
    if (!tools::writeWholeFile(path, bytes, tools::Flush::later)) failOn(path, "A page cannot be written");
    ++files_;
}

}  // namespace app::view
