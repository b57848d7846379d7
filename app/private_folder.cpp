#include "app/private_folder.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "app/failure.h"
#include "host/tools.h"

namespace app {

PrivateFolder::PrivateFolder() {
    std::error_code error;
    path_ = (std::filesystem::temp_directory_path(error) / "chat-transfer-XXXXXX").string();
    if (!error && mkdtemp(path_.data()) != nullptr) return;
    throw Failure({0, "A private folder for temporary files cannot be made", path_,
                   error ? error.message() : systemWords(errno), "set TMPDIR to a folder that you may write to"});
}

PrivateFolder::~PrivateFolder() {
    tools::del_dir(path_.c_str());
}

}  // namespace app
