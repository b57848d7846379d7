// A folder of one test, removed with the scope.
#pragma once

#include <cstddef>
#include <string>

namespace test {

class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    /// The absolute path, without a "/" at its end, well below 60 bytes.
    const std::string& path() const { return path_; }

    /// path() + "/" + name.
    std::string at(const std::string& name) const { return path_ + "/" + name; }

    /// Writes a file, missing folders included, and gives its path.
    std::string write(const std::string& name, const std::string& bytes) const;

    /// Creates a folder with its parents and gives its path.
    std::string makeDir(const std::string& name) const;

private:
    std::string path_;
};

/// A text of `size` bytes, most of them different from their neighbours.
std::string patterned(std::size_t size);

/// All bytes of a file; fails the test when it cannot be read.
std::string readFile(const std::string& path);

bool exists(const std::string& path);

/// The names in a folder, sorted, hidden ones included.
std::string listing(const std::string& path);

/// The permission bits, for example 0600.
unsigned permissionsOf(const std::string& path);

}  // namespace test
