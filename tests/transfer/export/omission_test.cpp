// The kinds of left-out things, and the sentences made from them. That each has its word, its number and its sentence
// is tested in tests/docs, against the page.
#include "transfer/omission.h"

#include <gtest/gtest.h>

#include "transfer/transfer_report.h"

namespace {

using chattransfer::Omission;
using chattransfer::OmissionCause;
using chattransfer::OmittedThing;

TEST(OmissionTest, TheHundredsSayWhatKindOfThingItIs) {
    EXPECT_EQ(OmittedThing::attachment, chattransfer::thingOf(Omission::attachmentNotWritten));
    EXPECT_EQ(OmittedThing::treeFile, chattransfer::thingOf(Omission::treeEntryIrregular));
    EXPECT_EQ(OmittedThing::package, chattransfer::thingOf(Omission::packageNotFlushed));
}

TEST(OmissionTest, OneCauseStandsForSeveralKinds) {
    EXPECT_EQ(OmissionCause::otherVersion, chattransfer::causeOf(Omission::messageFileOtherVersion));
    EXPECT_EQ(OmissionCause::otherVersion, chattransfer::causeOf(Omission::treeFileOtherVersion));
    EXPECT_EQ(OmissionCause::refused, chattransfer::causeOf(Omission::noteRefused));
}

TEST(OmissionTest, OnlyAttachmentsAreAttachments) {
    EXPECT_TRUE(chattransfer::isAttachment(Omission::attachmentMissing));
    EXPECT_TRUE(chattransfer::isAttachment(Omission::attachmentRefused));
    EXPECT_TRUE(chattransfer::isAttachment(Omission::attachmentNotWritten));
    EXPECT_FALSE(chattransfer::isAttachment(Omission::messageFileNotWritten));
}

TEST(OmissionTest, ADetailCompletesTheSentence) {
    EXPECT_EQ("the database refused it: disk full", chattransfer::sentenceOf(Omission::noteRefused, "disk full"));
    EXPECT_EQ("has another version than 2.0", chattransfer::sentenceOf(Omission::treeFileOtherVersion, "2.0"));
    EXPECT_EQ("the message file has another version than 2.0",
              chattransfer::sentenceOf(Omission::messageFileOtherVersion, "2.0"));
    EXPECT_EQ("cannot be searched for .mg files: File name too long",
              chattransfer::sentenceOf(Omission::folderNotSearched, ".mg files: File name too long"));
}

TEST(OmissionTest, ANumberThatIsNoKindSaysNothing) {
    const auto unknown = static_cast<Omission>(199);
    EXPECT_STREQ("", chattransfer::wordOf(unknown));
    EXPECT_EQ("", chattransfer::sentenceOf(unknown));
    EXPECT_EQ(OmissionCause{}, chattransfer::causeOf(unknown));
}

TEST(TransferReportTest, KeepsTheKindBesideTheSentence) {
    TransferReport report;
    report.skip("a.mg", Omission::treeFileUndecryptable, "no key");
    ASSERT_EQ(1U, report.skipped.size());
    EXPECT_EQ("a.mg", report.skipped[0].what);
    EXPECT_EQ("cannot be decrypted: no key", report.skipped[0].reason);
    EXPECT_EQ(Omission::treeFileUndecryptable, report.skipped[0].kind);
}

TEST(TransferReportTest, CountsWhatItNoLongerNames) {
    TransferReport report;
    for (std::size_t i = 0; i < TransferReport::kMostSkipped + 5; ++i)
        report.skip("a.jpg", Omission::attachmentMissing);
    EXPECT_EQ(TransferReport::kMostSkipped, report.skipped.size());
    EXPECT_EQ(static_cast<long long>(TransferReport::kMostSkipped) + 5, report.skippedCount);
}

}  // namespace
