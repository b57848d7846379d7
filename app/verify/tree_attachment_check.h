// The attachments that messages and notes name, in a tree and in an account.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "app/attachments/attachment_files.h"
#include "app/tree/tree_contents.h"
#include "app/verify/verify_report.h"

namespace app {

/// Collects the attachments of a tree, each once, and looks for them on both sides.
class TreeAttachmentCheck {
public:
    /// An empty `accountRoot` stands for no account.
    TreeAttachmentCheck(const TreeSource& source, std::string accountRoot)
        : files_(source.attachments(), std::move(accountRoot)) {}

    void collect(const imsdk::st_dbMessageBean& message);
    void collect(const std::vector<st_noteTrans>& notes);

    /// What is where; of use without an account too.
    AttachmentCounts count() const { return files_.count(); }

    /// An import moves attachments: the account must have them. Where the tree has a copy too (it is not the one that
    /// was imported, or the account had a file of that name before), both must have the same bytes.
    AttachmentCounts compare(VerifyReport& report) const;

private:
    AttachmentFiles files_;
};

}  // namespace app
