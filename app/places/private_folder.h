// A folder for texts that nobody else may see, gone with the scope.
#pragma once

#include <string>

namespace app {

class PrivateFolder {
public:
    /// Makes a folder of its own where the system keeps temporary files. Throws Failure.
    PrivateFolder();
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;
    PrivateFolder(PrivateFolder&&) = delete;
    PrivateFolder& operator=(PrivateFolder&&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

private:
    std::string path_;
};

}  // namespace app
