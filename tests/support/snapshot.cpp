#include "tests/support/snapshot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/support/temp_dir.h"

namespace fs = std::filesystem;

namespace test {
namespace {

std::string describe(const fs::directory_entry& entry) {
    const fs::file_status status = entry.symlink_status();
    const std::string mode = " " + std::to_string(static_cast<unsigned>(status.permissions())) + " ";
    if (fs::is_symlink(status)) return " link " + fs::read_symlink(entry.path()).string();
    if (fs::is_directory(status)) return " folder" + mode;
    if (fs::is_regular_file(status)) return " file" + mode + readFile(entry.path().string());
    return " other" + mode;
}

}  // namespace

std::string snapshotOf(const std::string& folder, const std::vector<std::string>& except) {
    std::vector<std::string> lines;
    for (auto entry = fs::recursive_directory_iterator(folder); entry != fs::recursive_directory_iterator(); ++entry) {
        const std::string name = entry->path().lexically_relative(folder).string();
        if (std::find(except.begin(), except.end(), name) != except.end()) {
            entry.disable_recursion_pending();
            continue;
        }
        lines.push_back(name + describe(*entry) + "\n");
    }
    std::sort(lines.begin(), lines.end());
    std::string text;
    for (const std::string& line : lines)
        text += line;
    return text;
}

void expectNowhereIn(const std::string& folder, const std::string& bytes) {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file() || entry.is_symlink()) continue;
        EXPECT_EQ(std::string::npos, readFile(entry.path().string()).find(bytes)) << entry.path();
    }
}

}  // namespace test
