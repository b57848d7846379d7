// The folder that the pages are written into.
#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace app::view {

class PageFolder {
public:
    /// `path` exists, is ours alone, and ends in "/".
    explicit PageFolder(std::string path) : path_(std::move(path)) {}

    [[nodiscard]] const std::string& path() const { return path_; }

    /// Makes a folder with its parents, for its owner only. Throws Failure.
    void makeFolder(const std::string& name);

    /// Writes a file for its owner only, into a folder that is there. It is not flushed to the disk: the folder counts
    /// only when all of it is there. Throws Failure.
    void write(const std::string& name, std::string_view bytes);

    [[nodiscard]] long long files() const { return files_; }

private:
    std::string path_;
    long long files_ = 0;
};

}  // namespace app::view
