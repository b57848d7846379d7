#include "app/commands/dry_run.h"

#include "app/account/missing_parts.h"
#include "app/base/interruption.h"
#include "app/base/printable.h"

namespace app {

void addDryRunOption(CLI::App& command, bool& dryRun) {
    command.add_flag("--dry-run", dryRun,
                     "Write nothing, and say what an import would do; it is done on copies of the databases in TMPDIR");
}

ImportTarget::ImportTarget(const Account& account, dbTrans& transfer, bool dryRun) : account_(account) {
    if (!dryRun) {
        makeAccountReady(account, transfer.dbKey);
        return;
    }
    tellWhatIsMissing(account, transfer.dbKey);
    copy_.emplace(account, transfer.dbKey);
    transfer.rehearsal = &attachments_;
}

ImportSource::ImportSource(const TreePlace& tree, const std::string& user, dbTrans& transfer, bool dryRun)
    : tree_(tree) {
    if (!dryRun) {
        removeLeftovers(tree.root);
        return;
    }
    copy_.emplace(tree, user);
    transfer.rehearsalSource = tree.parent;
}

void ImportSource::settle(TreeImportFiles& files, TransferReport& report) const {
    if (copy_) copy_->settle(files, report);
}

std::string importedInto(const std::string& database, bool dryRun) {
    return dryRun ? "Dry run, nothing was written. An import into " + printable(database) + " would do this:"
                  : "Imported into " + printable(database);
}

FailureWords wordsForInterruptedImport(const std::string& written, bool dryRun) {
    if (dryRun) return wordsForNothingDone();
    return {0, "Interrupted; " + written, "", "",
            "run the same command again: it adds what is missing, and nothing doubles"};
}

}  // namespace app
