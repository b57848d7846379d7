// What an operation left out, in words.
#include "app/report/left_out.h"

#include <gtest/gtest.h>

namespace app {
namespace {

using chattransfer::Omission;

TEST(LeftOut, NamesThePathsOfFilesAsTheFolderWasGiven) {
    TransferReport report;
    report.skip("./qelmsg_0/msg_0.mg", Omission::messageFileUnreadable);
    const TransferReport given = asGiven(report, {"backup", "/home/ann/backup", "/home/ann/backup"});
    EXPECT_EQ("backup/qelmsg_0/msg_0.mg", given.skipped.at(0).what);
    EXPECT_EQ(1, given.skippedCount);
}

TEST(LeftOut, TakesNoAttachmentForAPathOfTheFolder) {
    TransferReport report;
    report.skip("./a.jpg", Omission::attachmentMissing);
    EXPECT_EQ("./a.jpg", asGiven(report, {"backup", "/home/ann/backup", "/home/ann/backup"}).skipped.at(0).what);
}

TEST(LeftOut, FirstReasonIsNeverThatOfAnAttachment) {
    TransferReport report;
    report.skip("a.jpg", Omission::attachmentNotWritten);
    EXPECT_EQ("", firstReasonBesideAttachments(report));
    report.skip("msg_0.mg", Omission::messageFileNotWritten);
    EXPECT_EQ("msg_0.mg: the message file could not be written", firstReasonBesideAttachments(report));
}

}  // namespace
}  // namespace app
