#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

#include "tests/support/listed.h"

namespace fs = std::filesystem;

namespace test {

TempDir::TempDir() {
    std::string pattern = "/tmp/ct-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string TempDir::write(const std::string& name, const std::string& bytes) const {
    std::string path = at(name);
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
    return path;
}

std::string TempDir::makeDir(const std::string& name) const {
    fs::create_directories(at(name));
    return at(name);
}

std::string patterned(std::size_t size) {
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        text[i] = static_cast<char>(i % 251);
    return text;
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

bool exists(const std::string& path) {
    return fs::exists(fs::symlink_status(path));
}

std::string listing(const std::string& path) {
    std::set<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(path))
        names.insert(entry.path().filename().string());
    return listed(names);
}

unsigned permissionsOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(0, lstat(path.c_str(), &status)) << path;
    return status.st_mode & 07777U;
}

}  // namespace test
