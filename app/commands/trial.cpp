#include "app/commands/trial.h"

#include "app/account/ready_account.h"
#include "app/base/interruption.h"
#include "app/base/printable.h"

namespace app {

void addTrialOption(CLI::App& command, bool& trial) {
    command.add_flag("--dry-run", trial,
                     "Write nothing, and say what an import would do; it is done on copies of the databases in TMPDIR");
}

ImportTarget::ImportTarget(const Account& account, dbTrans& transfer, bool trial) : account_(account) {
    if (!trial) {
        makeAccountReady(account, transfer.dbKey);
        return;
    }
    tellWhatIsMissing(account, transfer.dbKey);
    copy_.emplace(account, transfer.dbKey);
    transfer.rehearsal = &attachments_;
}

ImportSource::ImportSource(const TreePlace& tree, const std::string& user, dbTrans& transfer, bool trial)
    : tree_(tree) {
    if (!trial) {
        removeLeftovers(tree.root);
        return;
    }
    copy_.emplace(tree, user);
    transfer.rehearsalSource = tree.parent;
}

void ImportSource::settle(TreeImportFiles& files) const {
    if (copy_) copy_->settle(files);
}

std::string importedInto(const std::string& database, bool trial) {
    return trial ? "Dry run, nothing was written. An import into " + printable(database) + " would do this:"
                 : "Imported into " + printable(database);
}

FailureWords wordsForInterruptedImport(const std::string& written, bool trial) {
    if (trial) return wordsForNothingDone();
    return {0, "Interrupted; " + written, "", "",
            "run the same command again: it adds what is missing, and nothing doubles"};
}

}  // namespace app
