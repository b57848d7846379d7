// importFile2 and importFile3: the attachments that a message body or a note names go into the user's folders.
#include <filesystem>

#include "host/tools.h"
#include "tests/support/json_text.h"
#include "tests/transfer/tree/tree_fixture.h"

namespace fs = std::filesystem;
using test::exists;
using test::listing;
using test::readFile;

namespace {

class TreeAttachments : public test::TreeTest {
protected:
    TreeAttachments() { transfer.imFileDir = tree("imfiles/"); }

    static std::string unique(const std::string& url) { return tools::getUniqueNameByUrl(url, true); }
    const TransferReport& report() const { return transfer.report; }
};

// --- Where each type's files go, for messages and for notes

struct TypeCase {
    bool note;
    int type;
    const char* body;
    std::vector<std::pair<const char*, const char*>> targets;  ///< attachment, folder; unique names in image and video
};

void PrintTo(const TypeCase& given, std::ostream* out) {
    *out << (given.note ? "note " : "message ") << given.type;
}

class TreeAttachmentsOfType : public TreeAttachments, public ::testing::WithParamInterface<TypeCase> {
protected:
    int import() {
        return GetParam().note ? transfer.importFile3(GetParam().body, GetParam().type)
                               : transfer.importFile2(GetParam().body, GetParam().type);
    }
    std::string target(const std::string& attachment, const std::string& folder) const {
        const bool byUrl = folder == "image" || folder == "video";
        return user(folder + "/" + (byUrl ? unique(attachment) : fs::path(attachment).filename().string()));
    }
};

TEST_P(TreeAttachmentsOfType, MoveIntoTheUsersFolders) {
    for (const auto& [attachment, folder] : GetParam().targets)
        addAttachment(attachment, attachment);
    EXPECT_EQ(1, import());
    for (const auto& [attachment, folder] : GetParam().targets) {
        EXPECT_EQ(attachment, readFile(target(attachment, folder)));
        EXPECT_FALSE(exists(tree(std::string("imfiles/") + attachment)));
    }
    EXPECT_EQ(static_cast<long long>(GetParam().targets.size()), report().attachmentsDone);
}

TEST_P(TreeAttachmentsOfType, StayWhereTheUserHasThemAlready) {
    for (const auto& [attachment, folder] : GetParam().targets) {
        addAttachment(attachment, "new");
        home.write(target(attachment, folder).substr(home.path().size() + 1), "old");
    }
    EXPECT_EQ(1, import());
    for (const auto& [attachment, folder] : GetParam().targets) {
        EXPECT_EQ("old", readFile(target(attachment, folder)));
        EXPECT_EQ("new", readFile(tree(std::string("imfiles/") + attachment)));
    }
    EXPECT_EQ(static_cast<long long>(GetParam().targets.size()), report().attachmentsPresent);
}

TEST_P(TreeAttachmentsOfType, AreCountedWhenTheyAreMissing) {
    EXPECT_EQ(1, import());
    EXPECT_EQ(static_cast<long long>(GetParam().targets.size()), report().attachmentsMissing);
    EXPECT_EQ("", listing(user("audio")) + listing(user("file")) + listing(user("image")) + listing(user("video")));
}

TEST_P(TreeAttachmentsOfType, AreIgnoredUnderTheKeysOfTheTwin) {
    for (const auto& [attachment, folder] : GetParam().targets)
        addAttachment(attachment, attachment);
    const int result = GetParam().note ? transfer.importFile2(GetParam().body, GetParam().type)
                                       : transfer.importFile3(GetParam().body, GetParam().type);
    EXPECT_EQ(1, result);
    // Only voice notes and voice messages share their key; of an image, the thumbnail's.
    const long long shared = GetParam().type == 3 || GetParam().type == 5 ? 1 : 0;
    EXPECT_EQ(shared, report().attachmentsDone);
}

INSTANTIATE_TEST_SUITE_P(
    Messages, TreeAttachmentsOfType,
    ::testing::Values(TypeCase{false, 3, R"({"mediaUrl": "v/a.amr"})", {{"v/a.amr", "audio"}}},
                      TypeCase{false, 6, R"({"mediaUrl": "f/a.pdf"})", {{"f/a.pdf", "file"}}},
                      TypeCase{false,
                               5,
                               R"({"mediaUrl": "i/a.jpg", "thumbUrl": "i/t.jpg"})",
                               {{"i/a.jpg", "image"}, {"i/t.jpg", "image"}}},
                      TypeCase{false,
                               28,
                               R"({"serverUrl": [{"mediaUrl": "1.jpg", "thumbUrl": "2.jpg"}, {"mediaUrl": "3.jpg"}]})",
                               {{"1.jpg", "image"}, {"2.jpg", "image"}, {"3.jpg", "image"}}},
                      TypeCase{false,
                               89,
                               R"({"preImgPath": "p.jpg", "videoFileName": "v.mp4"})",
                               {{"p.jpg", "image"}, {"v.mp4", "video"}}}));

INSTANTIATE_TEST_SUITE_P(
    Notes, TreeAttachmentsOfType,
    ::testing::Values(
        TypeCase{true, 3, R"({"mediaUrl": "v/a.amr"})", {{"v/a.amr", "audio"}}},
        TypeCase{true, 6, R"({"url": "f/a.pdf"})", {{"f/a.pdf", "file"}}},
        TypeCase{
            true, 5, R"({"mainUrl": "i/a.jpg", "thumbUrl": "i/t.jpg"})", {{"i/a.jpg", "image"}, {"i/t.jpg", "image"}}},
        TypeCase{true,
                 28,
                 R"({"nine": [{"mainUrl": "1.jpg", "thumbUrl": "2.jpg"}, {"mainUrl": "3.jpg"}]})",
                 {{"1.jpg", "image"}, {"2.jpg", "image"}, {"3.jpg", "image"}}},
        TypeCase{true, 89, R"({"preImgUrl": "p.jpg", "fileUrl": "v.mp4"})", {{"p.jpg", "image"}, {"v.mp4", "video"}}}));

// --- What the body may be

TEST_F(TreeAttachments, NeedATypeThatCarriesFiles) {
    addAttachment("a", "bytes");
    for (const int type : {0, 1, 2, 4, 7, 27, 29, 88, 90, -3}) {
        EXPECT_EQ(0, transfer.importFile2(R"({"mediaUrl": "a"})", type)) << type;
        EXPECT_EQ(0, transfer.importFile3(R"({"mediaUrl": "a"})", type)) << type;
    }
    EXPECT_TRUE(exists(tree("imfiles/a")));
}

TEST_F(TreeAttachments, NeedABodyThatIsJson) {
    for (const char* body : {"", "a.amr", "{", R"({"mediaUrl": "a")"}) {
        for (const int type : {3, 5, 6, 28, 89}) {
            EXPECT_EQ(0, transfer.importFile2(body, type)) << body;
            EXPECT_EQ(0, transfer.importFile3(body, type)) << body;
        }
    }
}

TEST_F(TreeAttachments, AreNoneInABodyOfAnotherShape) {
    const char* const bodies[] = {"[]",
                                  "5",
                                  "null",
                                  R"("text")",
                                  "{}",
                                  R"({"mediaUrl": 5, "thumbUrl": null})",
                                  R"({"serverUrl": {}, "nine": "a"})",
                                  R"({"serverUrl": [1, "a", null, []]})",
                                  R"({"mediaUrl": "", "thumbUrl": ""})",
                                  R"({"preImgPath": 1, "videoFileName": []})"};
    for (const char* body : bodies) {
        for (const int type : {3, 5, 6, 28, 89})
            EXPECT_EQ(1, transfer.importFile2(body, type)) << body;
    }
    EXPECT_EQ(0, report().skippedCount);
}

TEST_F(TreeAttachments, OfAnImageMoveOneByOne) {
    addAttachment("t.jpg", "thumbnail");
    EXPECT_EQ(1, transfer.importFile2(R"({"thumbUrl": "t.jpg"})", 5));
    EXPECT_EQ("thumbnail", readFile(user("image/" + unique("t.jpg"))));
}

TEST_F(TreeAttachments, OfAVideoMoveOnlyTogether) {
    addAttachment("p.jpg", "preview");
    addAttachment("v.mp4", "video");
    EXPECT_EQ(1, transfer.importFile2(R"({"preImgPath": "p.jpg"})", 89));
    EXPECT_EQ(1, transfer.importFile2(R"({"videoFileName": "v.mp4", "preImgPath": 5})", 89));
    EXPECT_EQ("p.jpg v.mp4", listing(tree("imfiles")));
}

TEST_F(TreeAttachments, OfTenThousandPicturesMoveAll) {
    std::string pictures;
    for (int i = 0; i < 10000; ++i)
        pictures += (i == 0 ? "" : ",") + (R"({"mediaUrl": ")" + std::to_string(i) + R"(.jpg"})");
    for (int i = 0; i < 10000; i += 100)
        addAttachment(std::to_string(i) + ".jpg", std::to_string(i));
    EXPECT_EQ(1, transfer.importFile2(R"({"serverUrl": [)" + pictures + "]}", 28));
    EXPECT_EQ(100, report().attachmentsDone);
    EXPECT_EQ(9900, report().attachmentsMissing);
    EXPECT_EQ("9900", readFile(user("image/" + unique("9900.jpg"))));
    EXPECT_EQ(9900, report().skippedCount);
    EXPECT_EQ(TransferReport::kMostSkipped, report().skipped.size());
}

// --- Names of strangers

TEST_F(TreeAttachments, WithPathLikeNamesAreLookedForBelowTheTree) {
    addAttachment("abs/a.amr", "one");
    addAttachment("http:/host/b.amr", "two");
    transfer.importFile2(R"({"mediaUrl": "/abs/a.amr"})", 3);
    transfer.importFile2(R"({"mediaUrl": "http://host/b.amr"})", 3);
    EXPECT_EQ("a.amr b.amr", listing(user("audio")));
}

TEST_F(TreeAttachments, NeverComeFromOutsideTheTree) {
    home.write("backup/qelbackup/1001/secret", "private");
    for (const char* value : {"../secret", "x/../../secret", "..", "a/..", "/../secret"}) {
        const std::string name = test::quoted(value);
        for (const int type : {3, 5, 6})
            transfer.importFile2(R"({"mediaUrl": )" + name + "}", type);
        std::string video = R"({"preImgUrl": )" + name;
        video += R"(, "fileUrl": )" + name + "}";
        transfer.importFile3(video, 89);
    }
    EXPECT_EQ("private", readFile(tree("secret")));
    EXPECT_EQ("", listing(user("audio")) + listing(user("file")) + listing(user("image")) + listing(user("video")));
    EXPECT_EQ(25, report().attachmentsRefused);
}

TEST_F(TreeAttachments, NeverComeOverALink) {
    const std::string outside = home.write("outside/a.amr", "private");
    test::makeLink(outside, tree("imfiles/link.amr"));
    test::makeLink(home.at("outside"), tree("imfiles/folder"));
    transfer.importFile2(R"({"mediaUrl": "link.amr"})", 3);
    transfer.importFile2(R"({"mediaUrl": "folder/a.amr"})", 3);
    EXPECT_EQ("", listing(user("audio")));
    EXPECT_EQ("private", readFile(outside));
    EXPECT_EQ(2, report().attachmentsRefused);
}

TEST_F(TreeAttachments, DoNotReplaceALinkOfTheUser) {
    addAttachment("a.amr", "sound");
    test::makeLink(home.at("nowhere"), user("audio/a.amr"));
    transfer.importFile2(R"({"mediaUrl": "a.amr"})", 3);
    EXPECT_TRUE(fs::is_symlink(user("audio/a.amr")));
    EXPECT_TRUE(exists(tree("imfiles/a.amr")));
}

TEST_F(TreeAttachments, WithNamesTooLongForTheirBufferAreNotThere) {
    const std::string fits(255, 'n');
    addAttachment(fits, "sound");
    transfer.importFile2(R"({"mediaUrl": ")" + fits + R"("})", 3);
    EXPECT_EQ("sound", readFile(user("audio/" + fits)));
    for (const int type : {3, 5, 6}) {
        transfer.importFile2(R"({"mediaUrl": ")" + std::string(256, 'n') + R"("})", type);
        transfer.importFile2(R"({"mediaUrl": "a/)" + std::string(10000, 'n') + R"("})", type);
    }
    EXPECT_EQ(6, report().attachmentsMissing);
    EXPECT_EQ(1, report().attachmentsDone);
}

TEST_F(TreeAttachments, ThatAreNoRegularFilesStay) {
    home.makeDir("backup/qelbackup/1001/imfiles/folder");
    test::makeFifo(tree("imfiles/fifo"));
    transfer.importFile2(R"({"mediaUrl": "folder"})", 3);
    transfer.importFile2(R"({"mediaUrl": "folder/"})", 3);
    transfer.importFile2(R"({"mediaUrl": "fifo", "thumbUrl": "fifo"})", 5);
    EXPECT_EQ("fifo folder", listing(tree("imfiles")));
    EXPECT_EQ("", listing(user("audio")) + listing(user("image")));
}

// --- The user's folders

TEST_F(TreeAttachments, GoIntoAFolderGivenWithoutASlashAtItsEnd) {
    transfer.userAudioDir = user("audio");
    transfer.userImageDir = user("image");
    addAttachment("a.amr", "sound");
    addAttachment("a.jpg", "image");
    transfer.importFile2(R"({"mediaUrl": "a.amr"})", 3);
    transfer.importFile2(R"({"mediaUrl": "a.jpg"})", 5);
    EXPECT_EQ("a.amr", listing(user("audio")));
    EXPECT_EQ(unique("a.jpg"), listing(user("image")));
    EXPECT_EQ("audio file image video", listing(home.at("account")));
}

TEST_F(TreeAttachments, StayWhenTheHostHasNotSetAFolder) {
    const test::WorkingFolder inside(home.makeDir("work"));
    transfer.userAudioDir = transfer.userFileDir = transfer.userImageDir = transfer.userVideoDir = "";
    for (const char* name : {"a", "p", "v"})
        addAttachment(name, name);
    transfer.importFile2(R"({"mediaUrl": "a"})", 3);
    transfer.importFile2(R"({"mediaUrl": "a"})", 5);
    transfer.importFile2(R"({"mediaUrl": "a"})", 6);
    transfer.importFile2(R"({"preImgPath": "p", "videoFileName": "v"})", 89);
    EXPECT_EQ("a p v", listing(tree("imfiles")));
    EXPECT_EQ("", listing(home.at("work")));
    EXPECT_EQ(5, report().attachmentsFailed);
}

TEST_F(TreeAttachments, NeverComeFromTheWorkingFolder) {
    const test::WorkingFolder inside(home.makeDir("work"));
    home.write("work/a.amr", "private");
    transfer.imFileDir = "";
    EXPECT_EQ(1, transfer.importFile2(R"({"mediaUrl": "a.amr"})", 3));
    EXPECT_EQ("private", readFile(home.at("work/a.amr")));
    EXPECT_EQ(1, report().attachmentsMissing);
}

TEST_F(TreeAttachments, OfImagesAndVideosMakeTheirFolders) {
    transfer.userImageDir = home.at("new/with/images");
    transfer.userVideoDir = home.at("new/with/videos/");
    addAttachment("p.jpg", "preview");
    addAttachment("v.mp4", "video");
    EXPECT_EQ(1, transfer.importFile3(R"({"preImgUrl": "p.jpg", "fileUrl": "v.mp4"})", 89));
    EXPECT_EQ("preview", readFile(home.at("new/with/images/" + unique("p.jpg"))));
    EXPECT_EQ("video", readFile(home.at("new/with/videos/" + unique("v.mp4"))));
    EXPECT_EQ(0700U, test::permissionsOf(home.at("new/with")));
}

TEST_F(TreeAttachments, ThatAreMissingMakeNoFolders) {
    transfer.userImageDir = home.at("new/images/");
    transfer.importFile2(R"({"mediaUrl": "a.jpg"})", 5);
    EXPECT_FALSE(exists(home.at("new")));
}

TEST_F(TreeAttachments, OfVoiceAndFilesStayWhenTheirFolderIsMissing) {
    transfer.userAudioDir = home.at("new/audio/");
    addAttachment("a.amr", "sound");
    EXPECT_EQ(1, transfer.importFile2(R"({"mediaUrl": "a.amr"})", 3));
    EXPECT_TRUE(exists(tree("imfiles/a.amr")));
    EXPECT_FALSE(exists(home.at("new")));
    EXPECT_EQ(1, report().attachmentsFailed);
}

TEST_F(TreeAttachments, MoveAcrossFileSystems) {
    const test::OtherFileSystem other(home.path());
    if (other.path().empty()) GTEST_SKIP() << "this machine has one file system only";
    transfer.userAudioDir = other.path();
    transfer.userImageDir = other.path() + "/images/";
    addAttachment("a.amr", std::string(300000, 's'));
    addAttachment("a.jpg", "image");
    transfer.importFile2(R"({"mediaUrl": "a.amr"})", 3);
    transfer.importFile2(R"({"mediaUrl": "a.jpg"})", 5);
    EXPECT_EQ(std::string(300000, 's'), readFile(other.path() + "/a.amr"));
    EXPECT_EQ("image", readFile(other.path() + "/images/" + unique("a.jpg")));
    EXPECT_EQ("", listing(tree("imfiles")));
}

}  // namespace
