// What an import of a tree makes of its report.
#include "app/tree/tree_import_files.h"

#include <gtest/gtest.h>

namespace app {
namespace {

using chattransfer::Omission;

long long notParsed(Omission kind) {
    TransferReport report;
    report.skip("./qelbackup/7/x", kind);
    return countNotParsed(report);
}

TEST(TreeImportFiles, CountsDecryptedFilesThatCannotBeReadOrUnderstood) {
    for (const Omission kind :
         {Omission::treeFileMissing, Omission::treeFileIrregular, Omission::treeFileUnreadable,
          Omission::treeFileNotJson, Omission::treeFileOtherVersion, Omission::treeFileWithoutDays,
          Omission::treeFileWithoutConversation, Omission::treeFileWithoutTable, Omission::contactFileMissing,
          Omission::contactFileNotJson, Omission::contactFileOtherVersion})
        EXPECT_EQ(1, notParsed(kind)) << chattransfer::wordOf(kind);
}

TEST(TreeImportFiles, CountsNothingElseAsNotUnderstood) {
    for (const Omission kind : {Omission::treeFileUndecryptable, Omission::folderNotSearched,
                                Omission::attachmentMissing, Omission::messageRefused, Omission::noteRefused,
                                Omission::conversationTableNotCreated, Omission::transactionLost})
        EXPECT_EQ(0, notParsed(kind)) << chattransfer::wordOf(kind);
}

}  // namespace
}  // namespace app
