// The C++, C and CMake of the documentation builds against an installed copy of the library, with our warnings.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/app/program.h"
#include "tests/docs/markdown.h"
#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

const std::string kPackages = CHAT_TRANSFER_PREFIX "/" CHAT_TRANSFER_LIBDIR "/pkgconfig";

// Statements as the body of a function, behind the headers that they include.
std::string asSource(const docs::Block& block) {
    if (!block.name.empty()) return block.text;
    std::string headers;
    std::string statements;
    for (const std::string& line : docs::linesOf(block.text))
        (line.compare(0, 8, "#include") == 0 ? headers : statements) += line + "\n";
    return headers + "void snippet(void) {\n" + statements + "}\n";
}

std::vector<std::string> pagesWith(const std::string& language) {
    std::vector<std::string> pages;
    for (const std::string& page : docs::allPages()) {
        const std::vector<docs::Block> blocks = docs::blocksOf(docs::readSource(page));
        const auto isWanted = [&language](const docs::Block& block) { return block.language == language; };
        if (std::any_of(blocks.begin(), blocks.end(), isWanted)) pages.push_back(page);
    }
    return pages;
}

class Sources : public testing::TestWithParam<std::string> {
protected:
    // Compiles the page's blocks of a language; files of the page can include each other.
    int compile(const std::string& language, const std::string& command) const {
        int compiled = 0;
        for (const docs::Block& block : docs::blocksOf(docs::readSource(GetParam()))) {
            if (block.language != language) continue;
            const std::string name =
                block.name.empty() ? "line" + std::to_string(block.line) + "." + language : block.name;
            home_.write(name, asSource(block));
            if (fs::path(name).extension() == ".h") continue;  // its users include it
            const test::Outcome run = shell(command + " " + name);
            EXPECT_EQ(0, run.code) << GetParam() << ":" << block.line << "\n" << run.all();
            ++compiled;
        }
        return compiled;
    }

    test::Outcome shell(const std::string& command) const {
        test::Setting setting;
        setting.environment = {"PKG_CONFIG_PATH=" + kPackages, "CMAKE_PREFIX_PATH=" CHAT_TRANSFER_PREFIX,
                               "CC=" CHAT_TRANSFER_CC, "CXX=" CHAT_TRANSFER_CXX};
        setting.workingDirectory = home_.path();
        return test::runProgram("/bin/sh", {"-euc", command}, setting);
    }

    test::TempDir home_;
};

class CppSources : public Sources {};
class CSources : public Sources {};
class CMakeLists : public Sources {};

const std::string kWarnings = " -Wall -Wextra -Wconversion -Wshadow -Werror -fsyntax-only ";

TEST_P(CppSources, Compile) {
    EXPECT_LT(0, compile("cpp", "$CXX -std=c++17" + kWarnings + "$(pkg-config --cflags chat_transfer)"));
}

TEST_P(CSources, Compile) {
    EXPECT_LT(0, compile("c", "$CC -std=c99" + kWarnings + "$(pkg-config --cflags chat_transfer_c)"));
}

// Lines for the CMakeLists.txt of a project that has a checkout of ours beside it.
TEST_P(CMakeLists, Configure) {
    for (const docs::Block& block : docs::blocksOf(docs::readSource(GetParam()))) {
        if (block.language != "cmake" || !block.name.empty()) continue;  // a whole file is built by the page's commands
        fs::create_directory_symlink(CHAT_TRANSFER_SOURCE_DIR, home_.at("chat_transfer"));
        home_.write("main.cpp", "int main() {}\n");
        home_.write(
            "CMakeLists.txt",
            "cmake_minimum_required(VERSION 3.20)\nproject(host LANGUAGES C CXX)\nadd_executable(app main.cpp)\n" +
                block.text);
        const test::Outcome run = shell("\"" CHAT_TRANSFER_CMAKE "\" -S . -B build");
        EXPECT_EQ(0, run.code) << GetParam() << ":" << block.line << "\n" << run.all();
        fs::remove_all(home_.path());
        fs::create_directory(home_.path());
    }
}

std::string nameOf(const testing::TestParamInfo<std::string>& page) {
    std::string name = page.param;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(OfPage, CppSources, testing::ValuesIn(pagesWith("cpp")), nameOf);
INSTANTIATE_TEST_SUITE_P(OfPage, CSources, testing::ValuesIn(pagesWith("c")), nameOf);
INSTANTIATE_TEST_SUITE_P(OfPage, CMakeLists, testing::ValuesIn(pagesWith("cmake")), nameOf);

}  // namespace
