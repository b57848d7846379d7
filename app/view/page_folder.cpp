#include "app/view/page_folder.h"

#include "app/base/failure.h"
#include "host/files/whole_file.h"
#include "host/tools.h"

namespace app::view {

void PageFolder::makeFolder(const std::string& name) {
    const std::string path = path_ + name;
    if (tools::createDir(path.c_str()) != 0) failToWrite(path, "A folder for the pages cannot be made");
}

void PageFolder::write(const std::string& name, std::string_view bytes) {
    const std::string path = path_ + name;
    if (!tools::writeWholeFile(path, bytes, tools::Flush::later)) failToWrite(path, "A page cannot be written");
    ++files_;
}

}  // namespace app::view
