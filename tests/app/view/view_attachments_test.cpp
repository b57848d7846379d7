// Attachments on the pages: what is shown, what is copied, and under which name.
#include <filesystem>

#include "tests/app/view/view_fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;

class ViewAttachments : public ViewTest {
protected:
    static Said named(int type, const std::string& body) {
        Said said;
        said.type = type;
        said.body = body;
        return said;
    }
    static Said fileNamed(const std::string& name) { return named(6, fileBody("srv/a", name)); }

    std::string mediaNames() const { return listing(at("pages/media")); }
};

TEST_F(ViewAttachments, ShowPicturesInline) {
    writeAttachment("a/photo.JPG", "photo");
    writeAttachment("a/small.jpg", "small");
    makePagesOf({named(5, pictureBody("a/photo.JPG", "a/small.jpg"))});
    EXPECT_SAYS(R"(<img src="../../media/1.jpg" alt="Picture from 2002")", firstPage());
    EXPECT_EQ("photo", page("media/1.jpg"));
    EXPECT_EQ("1.jpg", mediaNames());
}

TEST_F(ViewAttachments, ShowTheSmallPictureWhereTheOtherIsMissing) {
    writePackage({named(5, pictureBody("a/photo.jpg", "a/small.png"))});
    writeAttachment("a/small.png", "small");
    EXPECT_EQ("1", rowOf(expectSuccess(view("package", "pages")).out, "Attachments missing"));
    EXPECT_SAYS(R"(<img src="../../media/1.png")", firstPage());
}

TEST_F(ViewAttachments, PlayVoiceMessagesInline) {
    writeAttachment("srv/v.wav", "RIFF");
    makePagesOf({named(3, fileBody("srv/a", "v.wav"))});
    EXPECT_SAYS(R"(<audio controls preload="metadata" aria-label="Voice message" src="../../media/1.wav">)",
                firstPage());
    EXPECT_EQ("RIFF", page("media/1.wav"));
}

TEST_F(ViewAttachments, LinkFilesUnderTheirName) {
    writeAttachment("srv/Übersicht 1.pdf", "%PDF");
    makePagesOf({fileNamed("Übersicht 1.pdf")});
    EXPECT_SAYS(R"(href="../../media/1.pdf" download="Übersicht 1.pdf"><bdi>Übersicht 1.pdf</bdi>)", firstPage());
    EXPECT_EQ("%PDF", page("media/1.pdf"));
}

TEST_F(ViewAttachments, SayWhatIsMissing) {
    writePackage({fileNamed("gone.pdf")});
    const Outcome run = expectSuccess(view("package", "pages"));
    EXPECT_SAYS("Not in this backup: <bdi>gone.pdf</bdi>", firstPage());
    EXPECT_SAYS("warning: 1 attachment", run.err);
    EXPECT_EQ("", mediaNames());
}

TEST_F(ViewAttachments, AreCopiedOnceWhenSeveralMessagesNameThem) {
    writeAttachment("srv/x.pdf", "%PDF");
    makePagesOf({fileNamed("x.pdf"), fileNamed("x.pdf")});
    EXPECT_EQ("1.pdf", mediaNames());
    EXPECT_EQ(2U, countOf(R"(href="../../media/1.pdf")", firstPage()));
}

TEST_F(ViewAttachments, ThatABrowserWouldOpenAsAPageLoseTheirEnding) {
    for (const char* ending : {"html", "HTM", "svg", "xml", "xhtml", "mht", "js", "shtml", "pdf.html", "exe", ""})
        writeAttachment(std::string("srv/x.") + ending, "<script>");
    makePagesOf({fileNamed("x.html"), fileNamed("x.HTM"), fileNamed("x.svg"), fileNamed("x.xml"), fileNamed("x.xhtml"),
                 fileNamed("x.mht"), fileNamed("x.js"), fileNamed("x.shtml"), fileNamed("x.pdf.html"),
                 fileNamed("x.exe"), fileNamed("x.")});
    EXPECT_EQ("1.bin 10.bin 11.bin 2.bin 3.bin 4.bin 5.bin 6.bin 7.bin 8.bin 9.bin", mediaNames());
}

TEST_F(ViewAttachments, WithNamesThatLeadElsewhereAreNotCopied) {
    dir_.write("package/secret.pdf", "secret");
    dir_.write("secret.pdf", "secret");
    writePackage({fileNamed("../../../../secret.pdf"), named(5, pictureBody("../../../secret.pdf", "/../secret.pdf")),
                  named(6, fileBody("../..", "secret.pdf"))});
    const Outcome run = expectSuccess(view("package", "pages"));
    EXPECT_EQ("", mediaNames());
    EXPECT_SAYS("Not in this backup", firstPage());
    EXPECT_SAYS("names that lead elsewhere", run.err);
}

TEST_F(ViewAttachments, ThatAreLinksOrNoFilesAreNotCopied) {
    dir_.write("secret.pdf", "secret");
    writePackage({fileNamed("link.pdf"), fileNamed("folder.pdf"), named(6, fileBody("way/a", "secret.pdf"))});
    writeAttachment("srv/folder.pdf/x", "");
    fs::create_symlink(at("secret.pdf"), attachmentFolder("package") + "srv/link.pdf");
    fs::create_directory_symlink(at(""), attachmentFolder("package") + "way");
    EXPECT_EQ("3", rowOf(expectSuccess(view("package", "pages")).out, "Attachments refused"));
    EXPECT_EQ("", mediaNames());
}

}  // namespace
}  // namespace test
