// The attachments that messages name, in a package and in an account.
#pragma once

#include <string>
#include <utility>

#include "app/attachments/attachment_files.h"
#include "app/verify/compare_records.h"
#include "app/verify/verify_report.h"

namespace app {

/// Collects the attachments of messages, each once, and looks for them on both sides.
class AttachmentCheck {
public:
    /// `packageFolder` ends in "/". An empty `accountRoot` stands for no account.
    AttachmentCheck(std::string packageFolder, std::string accountRoot)
        : files_(std::move(packageFolder), std::move(accountRoot)) {}

    void collect(const std::string& body, int msgType);

    /// What is where; of use without an account too.
    AttachmentCounts count() const { return files_.count(); }

    /// Holds the files of both sides against each other.
    AttachmentCounts compare(Direction direction, VerifyReport& report) const;

private:
    void compareOne(const AttachmentFile& file, AttachmentPlace place, Direction direction, VerifyReport& report) const;

    AttachmentFiles files_;
};

}  // namespace app
