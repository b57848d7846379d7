#include "app/places/private_folder.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "app/base/failure.h"
#include "host/tools.h"

namespace app {

namespace {

std::string makeFolder() {
    std::error_code error;
    std::string path = (std::filesystem::temp_directory_path(error) / "chat-transfer-XXXXXX").string();
    if (!error && mkdtemp(path.data()) != nullptr) return path;
    throw Failure({0, "A private folder for temporary files cannot be made", path,
                   error ? error.message() : systemWords(errno), "set TMPDIR to a folder that you may write to"});
}

}  // namespace

PrivateFolder::PrivateFolder() : path_(makeFolder()) {}

PrivateFolder::~PrivateFolder() {
    tools::del_dir(path_.c_str());
}

}  // namespace app
