#include "app/verify_tree.h"

#include <iostream>

#include "app/failure.h"
#include "app/printable.h"
#include "app/progress_bar.h"
#include "app/text_table.h"
#include "app/tree_contact_files.h"
#include "app/tree_verification.h"
#include "app/units.h"

namespace app {
namespace {

void printSummary(const TreeVerifyCounts& counts, const TreeSource& source, const std::string& database,
                  const Stopwatch& watch) {
    std::cout << "Held the tree " << printable(source.root) << " against " << printable(database) << '\n';
    Summary summary;
    summary.add("Messages in the tree", counts.messages);
    summary.add("Messages that agree", counts.equalMessages);
    summary.add("Recent contacts in the tree", counts.contacts);
    summary.add("Notes in the tree", counts.notes);
    summary.add("Rooms in the tree", counts.rooms);
    summary.add("Attachments named", counts.attachments.named);
    summary.add("Attachments in the account", counts.attachments.inAccount());
    summary.add("Attachments compared", counts.attachments.both);
    summary.add("Time", humanDuration(watch.seconds()));
    summary.print(std::cout);
}

}  // namespace

VerifyReport verifyTree(const TreeSource& source, const Account& account, Database database, dbTrans& transfer,
                        long long most) {
    const Stopwatch watch;
    openDatabase(transfer, account, database);
    if (database == Database::main) openPluginDatabase(transfer, account);
    ProgressBar progress;
    progress.begin("Comparing", {});
    TreeVerification verification(source, database, transfer);
    verification.run();
    progress.complete();
    printSummary(verification.counts(), source, account.database(database), watch);
    if (database == Database::main) {
        printContactFiles(std::cout, verification.facts().contactFiles, verification.contactFile(), "compared");
    }
    verification.report().print(std::cout, most);
    return verification.report();
}

}  // namespace app
