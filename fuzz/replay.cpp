// Runs one fuzz target over the files of folders, without a fuzzer: `TARGET-replay CORPUS...`. So every input that once
// found a defect stays in the test suite, with any compiler.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <vector>

#include "fuzz/property.h"

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> filesIn(const fs::path& folder) {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

void replay(const fs::path& path) {
    std::cout << path.filename().string() << std::endl;
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    const std::string text = bytes.str();
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

}  // namespace

int main(int argc, char** argv) try {
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const fs::path& path : filesIn(argv[i])) {
            replay(path);
            ++count;
        }
    }
    std::cout << count << " inputs" << std::endl;
    return count > 0 ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << "replay: " << error.what() << '\n';
    return 1;
}
