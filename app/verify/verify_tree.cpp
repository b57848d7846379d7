#include "app/verify/verify_tree.h"

#include <iostream>

#include "app/account/open_database.h"
#include "app/base/printable.h"
#include "app/base/progress_bar.h"
#include "app/tree/tree_contact_files.h"
#include "app/verify/tree_verification.h"

namespace app {
namespace {

void summarise(Summary& summary, const TreeVerifyCounts& counts) {
    summary.add("messages.inTree", "Messages in the tree", counts.messages);
    summary.add("messages.equal", "Messages that agree", counts.equalMessages);
    summary.add("recentContacts.inTree", "Recent contacts in the tree", counts.contacts);
    summary.add("notes.inTree", "Notes in the tree", counts.notes);
    summary.add("rooms.inTree", "Rooms in the tree", counts.rooms);
    summary.add("attachments.referenced", "Attachments named", counts.attachments.named);
    summary.add("attachments.inAccount", "Attachments in the account", counts.attachments.inAccount());
    summary.add("attachments.compared", "Attachments compared", counts.attachments.both);
}

}  // namespace

VerifyReport verifyTree(const TreeSource& source, const Account& account, Database database, dbTrans& transfer,
                        RunReport& run) {
    openDatabase(transfer, account, database);
    if (database == Database::main) openPluginDatabase(transfer, account);
    ProgressBar progress(run.phases);
    progress.begin("Comparing", {});
    TreeVerification verification(source, database, transfer);
    verification.run();
    progress.complete();
    summarise(run.summary, verification.counts());
    run.printSummary("Held the tree " + printable(source.root) + " against " + printable(account.database(database)));
    if (database == Database::main) {
        printContactFiles(std::cout, verification.facts().contactFiles, verification.contactFile(), "compared");
    }
    return verification.report();
}

}  // namespace app
