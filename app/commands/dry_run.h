// --dry-run of the imports: the same work, on copies that go when it is done.
#pragma once

#include <optional>
#include <string>

#include "app/account/dry_run_account.h"
#include "app/base/failure.h"
#include "app/commands/command.h"
#include "app/tree/dry_run_tree.h"
#include "host/rehearsal.h"

namespace app {

/// --dry-run
void addDryRunOption(CLI::App& command, bool& dryRun);

/// Where an import writes: the account itself, or for a dry run its copy.
class ImportTarget {
public:
    /// Makes what the account lacks, or for a dry run a copy that has it, and lets `transfer` only note what it would
    /// do with attachments. Throws Failure.
    ImportTarget(const Account& account, dbTrans& transfer, bool dryRun);

    [[nodiscard]] const Account& account() const { return copy_ ? copy_->account() : account_; }

private:
    const Account& account_;
    tools::Rehearsal attachments_;
    std::optional<DryRunAccount> copy_;
};

/// Where the import of a tree reads: the tree itself, or for a dry run a copy of its record files.
class ImportSource {
public:
    /// Removes what an interrupted import left in the tree, or makes the copy and tells `transfer` of it. Throws
    /// Failure.
    ImportSource(const TreePlace& tree, const std::string& user, dbTrans& transfer, bool dryRun);

    [[nodiscard]] const TreePlace& place() const { return copy_ ? copy_->place() : tree_; }

    /// What the person named: also for a copy.
    [[nodiscard]] const GivenFolder& given() const { return tree_.given; }

    /// Once the files are decrypted: makes those of a copy count as those of the tree would.
    void settle(TreeImportFiles& files, TransferReport& report) const;

private:
    const TreePlace& tree_;
    std::optional<DryRunTree> copy_;
};

/// The line above the summary: what was written to, or would be.
[[nodiscard]] std::string importedInto(const std::string& database, bool dryRun);

/// What an interrupted import ends with. `written`: what it has written so far; a dry run has written nothing.
[[nodiscard]] FailureWords wordsForInterruptedImport(const std::string& written, bool dryRun);

}  // namespace app
