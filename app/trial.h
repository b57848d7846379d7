// --dry-run of the imports: the same work, on copies that go when it is done.
#pragma once

#include <optional>
#include <string>

#include "app/command.h"
#include "app/rehearsal_account.h"
#include "host/rehearsal.h"

namespace app {

/// --dry-run
void addTrialOption(CLI::App& command, bool& trial);

/// Where an import writes: the account itself, or for a trial its copy.
class ImportTarget {
public:
    /// Makes what the account lacks, or for a trial a copy that has it, and lets `transfer` only note what it would do
    /// with attachments. Throws Failure.
    ImportTarget(const Account& account, dbTrans& transfer, bool trial);

    const Account& account() const { return copy_ ? copy_->account() : account_; }

private:
    const Account& account_;
    tools::Rehearsal attachments_;
    std::optional<RehearsalAccount> copy_;
};

/// The line above the summary: what was written to, or would be.
std::string importedInto(const std::string& database, bool trial);

}  // namespace app
