// Pages of a tree: plain, decrypted, and encrypted with its key.
#include "tests/app/view/view_fixture.h"
#include "tests/support/json_text.h"

namespace test {
namespace {

class ViewTree : public ViewTest {
protected:
    void expectWholeTree(const Outcome& run) const {
        expectWholeSample(run);
        EXPECT_EQ("14", rowOf(run.out, "Notes and rooms, not shown"));
    }
};

TEST_F(ViewTree, ThatIsPlainIsShown) {
    makePlainTree("tree");
    expectWholeTree(view("tree", "pages"));
}

TEST_F(ViewTree, ThatIsEncryptedIsShownWithItsKeyAndLeavesNothingBehind) {
    makeEncryptedTree("backup");
    dir_.makeDir("temporary");
    const Outcome run =
        chatTransfer({"view", "--from", at("backup"), "--user", kUser, "--to", at("pages"), "--key-file", at("key")},
                     {{"TMPDIR=" + at("temporary")}});
    expectWholeTree(run);
    EXPECT_EQ("", listing(at("temporary")));
}

TEST_F(ViewTree, ThatIsEncryptedNeedsItsKey) {
    makeEncryptedTree("backup");
    expectFailure(view("backup", "pages"), {"the key, and none was given"});
    EXPECT_FALSE(exists(at("pages")));
}

TEST_F(ViewTree, ThatTheKeyDoesNotOpenHasNoPages) {
    makeEncryptedTree("backup");
    dir_.write("key", "wrong");
    expectFailure(view("backup", "pages", keyFile()), {"cannot be decrypted: wrong key"});
    EXPECT_FALSE(exists(at("pages")));
}

TEST_F(ViewTree, WithADamagedFileIsShownAndSaysSo) {
    makePlainTree("tree");
    dir_.write("tree/12/list.mg", "no JSON");
    const Outcome run = expectFailure(view("tree", "pages"), {"12/list.mg: is not JSON"});
    EXPECT_EQ("300", rowOf(run.out, "Messages"));
}

TEST_F(ViewTree, ShowsVideosWithTheirStill) {
    makePlainTree("tree");
    ASSERT_EXIT_CODE(0, view("tree", "pages"));
    EXPECT_SAYS(R"(<video controls preload="none" src="../../media/)", allPages());
    EXPECT_SAYS(R"( poster="../../media/)", allPages());
}

TEST_F(ViewTree, ShowsThePackageWhereThereIsOneUnlessAskedForTheTree) {
    makePackage("account", "backup");
    makeEncryptedTree("backup");
    EXPECT_SAYS("qelmsg_0 in ", view("backup", "first").out);
    EXPECT_SAYS("qelbackup/", view("backup", "second", {"--tree", "--key-file", at("key")}).out);
}

TEST_F(ViewTree, ShowsSeveralPicturesOfOneMessage) {
    const std::string body = R"({"serverUrl": [{"mediaUrl": "a.png", "thumbUrl": "at.png"}, )"
                             R"({"mediaUrl": "b.jpg", "thumbUrl": "bt.jpg"}]})";
    dir_.write("tree/2002/a.mg",
               R"({"version": "1.0", "msgs": [{"date": {"year": 2024, "month": 3, "day": 7}, "msgs": )"
               R"([{"sendUserID": 2002, "messageType": 28, "messageID": 1, "message": )" +
                   quoted(body) + "}]}]}");
    for (const char* name : {"a.png", "at.png", "b.jpg", "bt.jpg"})
        dir_.write(std::string("tree/imfiles/") + name, name);
    const Outcome run = view("tree", "pages");
    ASSERT_EXIT_CODE(0, run);
    EXPECT_EQ("a.png", page("media/1.png"));
    EXPECT_EQ("b.jpg", page("media/2.jpg"));
    EXPECT_EQ("1.png 2.jpg", listing(at("pages/media")));
    EXPECT_SAYS("Picture, Picture", page("search/1.js"));
}

}  // namespace
}  // namespace test
