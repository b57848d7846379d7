// The folder of pages as a whole: when it appears, who may read it, and what it may load.
#include <filesystem>

#include "tests/app/view/view_fixture.h"
#include "tests/support/snapshot.h"

namespace test {
namespace {

namespace fs = std::filesystem;

using ViewFolder = ViewTest;

TEST_F(ViewFolder, MayExistWhenItIsEmpty) {
    writePackage({{}});
    dir_.makeDir("pages");
    EXPECT_EXIT_CODE(0, view("package", "pages"));
    EXPECT_TRUE(exists(at("pages/index.html")));
}

TEST_F(ViewFolder, IsRefusedWhenItHoldsAnything) {
    writePackage({{}});
    dir_.write("pages/mine.txt", "keep");
    expectFailure(view("package", "pages"), {"not an empty folder"});
    EXPECT_EQ("mine.txt", listing(at("pages")));
}

TEST_F(ViewFolder, IsRefusedWhenItIsAFileOrALinkToNothing) {
    writePackage({{}});
    dir_.write("file", "keep");
    fs::create_symlink(at("nowhere"), at("link"));
    EXPECT_EXIT_CODE(1, view("package", "file"));
    EXPECT_EXIT_CODE(1, view("package", "link"));
    EXPECT_EQ("keep", readFile(at("file")));
    EXPECT_FALSE(exists(at("nowhere")));
}

TEST_F(ViewFolder, IsRefusedInsideThePackage) {
    writePackage({{}});
    const std::string before = snapshotOf(at("package"));
    expectFailure(view("package", "package/qelmsg_0/pages"), {"inside the source"});
    EXPECT_EQ(before, snapshotOf(at("package")));
}

TEST_F(ViewFolder, LeavesThePackageAsItIs) {
    makePackage("account", "package");
    const std::string before = snapshotOf(at("package"));
    makePages();
    EXPECT_EQ(before, snapshotOf(at("package")));
}

TEST_F(ViewFolder, IsForItsOwnerOnly) {
    makePackage("account", "package");
    makePages();
    EXPECT_EQ(0700U, permissionsOf(at("pages")));
    int files = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(at("pages"))) {
        EXPECT_EQ(entry.is_directory() ? 0700U : 0600U, permissionsOf(entry.path().string())) << entry.path();
        ++files;
    }
    EXPECT_LT(10, files);
}

TEST_F(ViewFolder, DoesNotAppearWhenThePagesCannotBeWritten) {
    makePackage("account", "package");
    const Outcome run = chatTransfer({"view", "--from", at("package"), "--user", kUser, "--to", at("pages")},
                                     {{}, 2000});  // no file may be larger
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("cannot be written", run.err);
    EXPECT_EQ("account package", listing(dir_.path()));
}

TEST_F(ViewFolder, ComesAlsoFromADamagedPackageThatSaysSo) {
    writePackage({{}});
    putIntoPackage("msg_1.mg", "[]");
    expectFailure(view("package", "pages"), {"msg_1.mg"});
    EXPECT_SAYS("hello", firstPage());
}

TEST_F(ViewFolder, DoesNotAppearWhenNothingCanBeRead) {
    putIntoPackage("msg_0.mg", "[]");
    dir_.makeDir(std::string("package/qelmsg_0/qelimfiles_0/") + kUser);
    expectFailure(view("package", "pages"), {"Nothing can be read"});
    EXPECT_EQ("package", listing(dir_.path()));
}

TEST_F(ViewFolder, SaysWhenThereIsNoPackage) {
    expectFailure(view("nothing", "pages"), {"There is no package"});
    EXPECT_FALSE(exists(at("pages")));
}

// What every page promises, held against all pages of a sample.
class ViewPromises : public ViewTest {
protected:
    void SetUp() override {
        makePackage("account", "package");
        makePages();
        names_ = filesEnding(".html");
        ASSERT_LT(10U, names_.size());
    }

    std::vector<std::string> names_;
};

TEST_F(ViewPromises, EveryPageHasAPolicyBeforeAnythingThatLoads) {
    for (const std::string& name : names_) {
        const std::string text = page(name);
        const std::size_t policy =
            text.find(R"(<meta http-equiv="Content-Security-Policy" content="default-src &#39;none&#39;;)");
        ASSERT_NE(std::string::npos, policy) << name;
        for (const char* loader : {"<style", "<script", " src=", " href="})
            EXPECT_LT(policy, text.find(loader)) << loader << " in " << name;
    }
}

TEST_F(ViewPromises, EveryReferenceLeadsToAFileOfTheFolder) {
    int references = 0;
    for (const std::string& name : names_) {
        const fs::path folder = (fs::path(at("pages")) / name).parent_path();
        for (const char* attribute : {"href", "src", "poster"}) {
            for (const std::string& target : valuesOf(attribute, page(name))) {
                ++references;
                if (target.front() == '#') continue;
                EXPECT_EQ(std::string::npos, target.find(':')) << target;
                EXPECT_NE('/', target.front()) << target;
                const fs::path file = (folder / target.substr(0, target.find('#'))).lexically_normal();
                EXPECT_TRUE(fs::is_regular_file(file)) << name << " leads to " << target;
                EXPECT_EQ(0U, file.string().find(at("pages") + "/")) << target;
            }
        }
    }
    EXPECT_LT(300, references);
}

TEST_F(ViewPromises, NoPageNamesAnAddressOfTheNetwork) {
    for (const std::string& name : names_) {
        for (const char* address : {"http://", "https://", R"(="//)", "url(", "@import"})
            EXPECT_EQ(0U, countOf(address, page(name))) << address << " in " << name;
    }
}

TEST_F(ViewPromises, NoPageHasAHandlerOrAStyleOfAnElement) {
    for (const std::string& name : names_) {
        for (const char* attribute : {" onclick=", " onload=", " onerror=", R"( style=")", "javascript:", " srcdoc"})
            EXPECT_EQ(0U, countOf(attribute, page(name))) << attribute << " in " << name;
    }
}

TEST_F(ViewPromises, OnlyTheSearchHasAScript) {
    for (const std::string& name : names_)
        EXPECT_EQ(name == "search.html" ? 1U : 0U, countOf("<script", page(name))) << name;
}

TEST_F(ViewPromises, EveryPageHasALanguageATitleOneHeadingAndItsLandmarks) {
    for (const std::string& name : names_) {
        for (const char* part :
             {R"(<html lang="en">)", "</title>\n<style>", "<h1>", R"(<main id="main">)", "<header>", R"(href="#main")"})
            EXPECT_EQ(1U, countOf(part, page(name))) << part << " in " << name;
    }
}

TEST_F(ViewPromises, EveryPictureHasAText) {
    std::size_t pictures = 0;
    for (const std::string& name : names_) {
        EXPECT_EQ(countOf("<img ", page(name)), countOf(R"( alt="Picture from )", page(name))) << name;
        pictures += countOf("<img ", page(name));
    }
    EXPECT_EQ(1U, pictures);
}

}  // namespace
}  // namespace test
