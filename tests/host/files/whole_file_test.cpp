// Whole files: written, read, and refused when no text can hold them.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>

#include "host/files/confined_files.h"
#include "host/files/whole_file.h"
#include "tests/support/posix_helpers.h"
#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

// A file of any size that takes no room; tmpfs has no limit of its own.
class SparseFile {
public:
    explicit SparseFile(std::uintmax_t size) : path_("/dev/shm/chat-transfer-sparse-" + std::to_string(getpid())) {
        std::ofstream(path_, std::ios::binary).flush();
        std::error_code error;
        fs::resize_file(path_, size, error);
        made_ = !error;
    }
    ~SparseFile() { fs::remove(path_); }
    SparseFile(const SparseFile&) = delete;
    SparseFile& operator=(const SparseFile&) = delete;

    bool made() const { return made_; }
    const std::string& path() const { return path_; }

private:
    std::string path_;
    bool made_ = false;
};

TEST(WholeFile, IsReadAsItWasWritten) {
    const test::TempDir dir;
    const std::string bytes("a\0\xff\n", 4);
    ASSERT_TRUE(tools::writeWholeFile(dir.at("file"), bytes));
    std::string read = "other";
    EXPECT_TRUE(tools::readWholeFile(dir.at("file"), read));
    EXPECT_EQ(bytes, read);
}

TEST(WholeFile, OfMoreBytesThanAnyTextIsNotRead) {
    const SparseFile file(std::numeric_limits<std::int64_t>::max());
    if (!file.made()) GTEST_SKIP() << "no file system here takes such a file";
    std::string bytes;
    EXPECT_FALSE(tools::readWholeFile(file.path(), bytes));
    EXPECT_FALSE(tools::ConfinedFolder("/").read(file.path(), bytes));
}

TEST(WholeFile, ThatIsALinkOrNoRegularFileIsNotRead) {
    const test::TempDir dir;
    test::makeLink(dir.write("file", "bytes"), dir.at("link"));
    test::makeFifo(dir.at("fifo"));
    std::string bytes;
    for (const char* name : {"link", "fifo", "missing", "."})
        EXPECT_FALSE(tools::readWholeFile(dir.at(name), bytes)) << name;
}

}  // namespace
