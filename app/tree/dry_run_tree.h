// A tree to try an import on: copies of the record files of a real one. Attachments stay where they are.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/places/private_folder.h"
#include "app/places/tree_place.h"
#include "app/tree/tree_import_files.h"

namespace app {

/// Lives in a private folder, and goes with it: the decrypted texts never touch the real tree. Throws Failure.
class DryRunTree {
public:
    DryRunTree(TreePlace real, const std::string& user);

    [[nodiscard]] const TreePlace& place() const { return copy_; }

    /// Adds what could not be copied to the files that an import cannot read and to its report, and makes the one file
    /// of recent contacts count that counts in the real tree: which one that is depends on the order in which the
    /// system lists a folder.
    void settle(TreeImportFiles& files, TransferReport& report) const;

private:
    void copyFile(const std::string& name);
    void leaveOut(const std::string& name, chattransfer::Omission kind, std::string_view detail = {});

    PrivateFolder folder_;
    TreePlace real_;
    TreePlace copy_;
    std::string user_;
    std::vector<TransferReport::Skipped> notCopied_;
};

}  // namespace app
