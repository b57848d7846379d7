#include <iostream>
#include <memory>

#include "app/account/key_source.h"
#include "app/account/open_database.h"
#include "app/base/failure.h"
#include "app/base/printable.h"
#include "app/commands/commands.h"
#include "app/verify/verification.h"
#include "app/verify/verify_tree.h"
#include "transfer/dbTrans.h"

namespace app {
namespace {

struct VerifyOptions {
    std::string from;
    std::string account;
    std::string user;
    SinceDay since;
    std::string check = "both";
    std::string database = "main";
    long long most = 20;
    bool strict = false;
    bool tree = false;
    KeyOptions key;
};

Direction directionOf(const VerifyOptions& options) {
    if (options.check == "exported") return Direction::exported;
    return options.check == "imported" ? Direction::imported : Direction::both;
}

Database databaseOf(const VerifyOptions& options) {
    return options.database == "back" ? Database::back : Database::main;
}

void summarise(Summary& summary, const VerifyCounts& counts) {
    summary.add("messages.inPackage", "Messages in the package", counts.packageMessages);
    summary.add("messages.inAccount", "Messages in the account", counts.accountMessages);
    summary.add("messages.equal", "Messages that agree", counts.equalMessages);
    summary.add("recentContacts.inPackage", "Recent contacts in the package", counts.packageContacts);
    summary.add("recentContacts.inAccount", "Recent contacts in the account", counts.accountContacts);
    summary.add("attachments.referenced", "Attachments named", counts.attachments.named);
    summary.add("attachments.compared", "Attachments compared", counts.attachments.both);
    summary.add("attachments.missing", "Attachments on neither side", counts.attachments.neither);
}

// Prints what was found, and says by the exit code whether it matters.
int conclude(const VerifyReport& report, const VerifyOptions& options, RunReport& run) {
    report.print(std::cout, options.most);
    run.findings = report.findings(options.most);
    run.changedByRule = report.changedByRule();
    return report.hasFindings() || (options.strict && report.hasRules()) ? kFailed : kDone;
}

int runVerifyTree(const VerifyOptions& options, const TreeSource& tree, RunReport& run) {
    if (!options.since.text.empty() || options.check == "exported") {
        throw Failure({0, "A tree is never exported, and is held against an account whole", tree.root, "",
                       "leave out --since and --check"});
    }
    const Account account(options.account);
    const SecretText key = findKey(options.key, account);
    dbTrans transfer;
    transfer.dbKey = key.text();
    return conclude(verifyTree(tree, account, databaseOf(options), transfer, run), options, run);
}

int runVerify(const VerifyOptions& options, RunReport& run) {
    const TreeSource tree = findTreeSource(options.from, options.user, options.tree);
    if (!tree.root.empty()) return runVerifyTree(options, tree, run);
    const PackagePlace place = findPackage(options.from, options.user);
    const Account account(options.account);
    const Database database = databaseOf(options);
    const SecretText key = findKey(options.key, account);
    dbTrans transfer;
    transfer.dbKey = key.text();
    openDatabase(transfer, account, database);

    ProgressBar progress(run.phases, {{"Reading the package", 50}, {"Comparing conversations", 45}});
    transfer.progressListener = &progress;
    Verification verification({options.since.day(), directionOf(options), database}, place, transfer);
    verification.run(progress);
    summarise(run.summary, verification.counts());
    run.printSummary("Held " + printable(place.root()) + " against " + printable(account.database(database)));
    return conclude(verification.report(), options, run);
}

constexpr const char* kFooter =
    R"(Lists every message, recent contact and attachment that is missing on one side or differs, and exits with 1 if there is
any. What is different because export and import change it by rule is counted apart and does not fail the command unless
--strict is given. Nothing is written anywhere.

--check says how the package and the account belong together:
  exported  the package was made from this account: all that the account holds must be in the package
  imported  the package was imported into this account, which may hold more: all of the package must be in the account
  both      both must hold

--from takes the folder that holds the package qelmsg_0 or the tree qelbackup/ID, or the package or tree itself. Where it
holds both, the package is meant; --tree asks for the tree. A tree is always held against an account into which it was imported:
all its messages, recent contacts, notes and rooms must be in the account, and the attachments that they name. An import moves
attachments out of the tree; where the tree has them too, because it is another copy or its plain form, both must have the
same bytes. Encrypted files are read with the key of the account.

Examples:
  chat-transfer verify --from ~/backup --account ~/chat --user 1000000000000001 --key-file ~/.chat-key
  chat-transfer verify --from ~/backup --account ~/chat --user 1000000000000001 --since 2024-01-01 --check exported
  chat-transfer verify --from ~/plain-tree --account ~/chat --user 1000000000000001 --tree --key-file ~/.chat-key)";

}  // namespace

void addVerifyCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<VerifyOptions>();
    CLI::App* command =
        program.add_subcommand("verify", "Hold a package or a tree against an account and list what differs");
    addFolderOption(*command, "--from", options->from, "Folder that holds the package or the tree, see below");
    addAccountOption(*command, options->account);
    addUserOption(*command, options->user);
    addSinceOption(*command, options->since, "Only messages of this day and later; without it, all messages");
    command->add_option("--check", options->check, "Which way the package went, see below")
        ->type_name("both|exported|imported")
        ->check(CLI::IsMember({"both", "exported", "imported"}).description(""))
        ->capture_default_str();
    command->add_option("--database", options->database, "Database of the account that is looked at")
        ->type_name("main|back")
        ->check(CLI::IsMember({"main", "back"}).description(""))
        ->capture_default_str();
    command->add_option("--most", options->most, "How many lines to list of each kind")
        ->type_name("N")
        ->check(CLI::Range(0LL, 100000LL).description(""))
        ->capture_default_str();
    command->add_flag("--strict", options->strict, "Fail also on what is different by rule");
    command->add_flag("--tree", options->tree, "Hold a tree against the account, also where there is a package");
    addKeyOptions(*command, options->key);
    command->footer(kFooter);
    setJob(*command, job, std::move(options), runVerify);
}

}  // namespace app
