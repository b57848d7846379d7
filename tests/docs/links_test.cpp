// Links between the documents lead somewhere.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tests/docs/markdown.h"
#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

const fs::path kRoot = CHAT_TRANSFER_SOURCE_DIR;
const fs::path kDocs = kRoot / "docs";

std::vector<fs::path> allPages() {
    std::vector<fs::path> pages;
    for (const std::string& page : docs::allPages())
        pages.push_back(kRoot / page);
    return pages;
}

bool isExternal(const std::string& target) {
    return target.find("://") != std::string::npos;
}

// The file that a link of `page` leads to; the page itself for a mere anchor.
fs::path targetFile(const fs::path& page, const std::string& target) {
    const std::string path = target.substr(0, target.find('#'));
    return path.empty() ? page : (page.parent_path() / path).lexically_normal();
}

bool hasAnchor(const fs::path& file, const std::string& target) {
    const std::size_t hash = target.find('#');
    if (hash == std::string::npos) return true;
    const std::vector<std::string> anchors = docs::anchors(test::readFile(file.string()));
    return std::find(anchors.begin(), anchors.end(), target.substr(hash + 1)) != anchors.end();
}

}  // namespace

TEST(DocumentLinks, LeadToFilesThatExist) {
    for (const fs::path& page : allPages()) {
        for (const std::string& target : docs::linkTargets(test::readFile(page.string()))) {
            if (isExternal(target)) continue;
            EXPECT_TRUE(fs::exists(targetFile(page, target))) << page << " links to " << target;
        }
    }
}

TEST(DocumentLinks, LeadToHeadingsThatExist) {
    for (const fs::path& page : allPages()) {
        for (const std::string& target : docs::linkTargets(test::readFile(page.string()))) {
            const fs::path file = targetFile(page, target);
            if (isExternal(target) || file.extension() != ".md" || !fs::exists(file)) continue;
            EXPECT_TRUE(hasAnchor(file, target)) << page << " links to " << target;
        }
    }
}

TEST(DocumentIndex, NamesEveryPage) {
    const fs::path index = kDocs / "README.md";
    std::set<fs::path> named = {index};
    for (const std::string& target : docs::linkTargets(test::readFile(index.string())))
        named.insert(targetFile(index, target));
    for (const fs::path& page : allPages()) {
        if (page.parent_path() == kRoot) continue;
        EXPECT_EQ(1U, named.count(page)) << page << " is missing in docs/README.md";
    }
}

TEST(SiteNavigation, NamesEveryPage) {
    const std::string configuration = docs::readSource("mkdocs.yml");
    for (const fs::path& page : allPages()) {
        if (page.parent_path() == kRoot) continue;
        const std::string entry = ": " + page.lexically_relative(kDocs).string() + "\n";
        EXPECT_NE(std::string::npos, configuration.find(entry)) << page << " is missing in mkdocs.yml";
    }
}
