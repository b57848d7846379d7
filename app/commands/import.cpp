#include <unistd.h>

#include <cerrno>
#include <memory>

#include "app/account/key_source.h"
#include "app/account/open_database.h"
#include "app/base/failure.h"
#include "app/base/interruption.h"
#include "app/base/paths.h"
#include "app/base/progress_bar.h"
#include "app/base/units.h"
#include "app/commands/commands.h"
#include "app/commands/dry_run.h"
#include "app/package/package_files.h"
#include "app/places/package_place.h"
#include "app/report/refused_records.h"
#include "app/report/transfer_rows.h"
#include "transfer/dbTrans.h"

namespace app {
namespace {

struct ImportOptions {
    std::string from;
    std::string account;
    std::string user;
    std::string into = "main";
    std::string packageVersion;
    bool dryRun = false;
    KeyOptions key;
};

Database databaseOf(const ImportOptions& options) {
    return options.into == "back" ? Database::back : Database::main;
}

// Paths of the transfer stay short this way, however long the package's path is.
void enter(const std::string& folder) {
    if (chdir(folder.c_str()) == 0) return;
    throw Failure({0, "The package's folder cannot be entered", folder, systemWords(errno), "check its permissions"});
}

void read(dbTrans& transfer, const PackagePlace& place) {
    const unsigned int code = transfer.rdMsgFromFile();
    if (code == chattransfer::kSuccess) return;
    throw Failure({code, "The package cannot be read; nothing was written to the database", place.messages, "",
                   "look at it with: chat-transfer inspect"});
}

void write(dbTrans& transfer, Database into, const Account& account) {
    const unsigned int code = into == Database::main ? transfer.wtMsgToDB() : transfer.wtMsgToBackDB();
    const imsdk::dbUtils& db = connection(transfer, into);
    if (code == chattransfer::kSuccess && !db.transactionFailed()) return;
    throw Failure({code != 0 ? code : chattransfer::kDatabaseFailed,
                   "The messages could not all be written; conversations written before stay", account.database(into),
                   db.lastError(),
                   "close the client, check that the disk is not full, and import again: nothing doubles"});
}

void summarise(Summary& summary, const dbTrans& transfer, const ImportOptions& options, const PackagePlace& place) {
    addMessageRows(summary, transfer.report);
    summary.add("conversations.all", "Conversations", static_cast<long long>(transfer.msgMap.size()));
    summary.add("conversations.new", "Conversations new", transfer.report.tablesCreated);
    if (databaseOf(options) == Database::main) addContactRows(summary, transfer);
    addAttachmentRows(summary, transfer.report, "restored");
    summary.addSize("bytes", "Size of the package", sizeOfFolder(place.messages) + sizeOfFolder(place.attachments));
}

// Says what of the package did not arrive though it should have. True when there is nothing to say.
bool arrivedWhole(RunReport& run, const dbTrans& transfer, const ImportOptions& options, const PackagePlace& place) {
    const TransferReport& report = transfer.report;
    const bool lost = run.warnOf(
        {{countUnreadableFiles(place, report), "of the package's files could not be read, see below"},
         {countFilesBehindGap(place), "message files stand behind a gap in the numbering and are never read"},
         {report.messagesRefused, "messages were refused by the database, see below"},
         {report.attachmentsFailed, "attachments could not be copied, see below"},
         {databaseOf(options) == Database::main ? refusedContacts(transfer) : 0,
          "recent contacts were refused by the database"}});
    run.leaveOut(report);
    return !lost;
}

std::string whatIsWritten(const TransferReport& report) {
    return counted(report.messagesInserted, "message has", "messages have") + " been written, in whole conversations";
}

int runImport(const ImportOptions& options, RunReport& run) {
    run.dryRun = options.dryRun;
    const PackagePlace place = findPackage(options.from, options.user);
    run.given = place.given;
    requireVersion(place, options.packageVersion);
    const Account account(options.account);
    const SecretText key = findKey(options.key, account);
    dbTrans transfer;
    transfer.dbKey = key.text();
    const InterruptsMark interrupts;
    // Before the package is read, which restores attachments: a wrong key or a locked database must not leave them
    // behind.
    const Database into = databaseOf(options);
    checkForWriting(transfer, account, into);
    const ImportTarget target(account, transfer, options.dryRun);
    openForWriting(transfer, target.account(), into);
    enter(place.parent);

    ProgressBar progress(run.phases, {{"Reading message files", 45}, {"Writing conversations", 55}});
    transfer.progressListener = &progress;
    transfer.backupPath = ".";
    transfer.packageSubDir = options.user;
    transfer.packageVersion = options.packageVersion;
    const auto work = [&] {
        progress.begin("Reading the package", {{2, "Reading message files"}});
        read(transfer, place);
        leaveIfInterrupted();
        progress.begin("Writing the messages", {{1, "Writing conversations"}});
        write(transfer, into, account);
    };
    const auto words = [&] { return wordsForInterruptedImport(whatIsWritten(transfer.report), options.dryRun); };
    summarised([&] { interruptible(work, words); }, [&] { summarise(run.summary, transfer, options, place); });
    progress.complete();

    run.printSummary(importedInto(account.database(into), options.dryRun));
    return arrivedWhole(run, transfer, options, place) ? kDone : kFailed;
}

constexpr const char* kFooter =
    R"(Importing a package again adds nothing twice: a message that its conversation holds already stays as it is, and so do
image and file attachments. (Voice files are always copied again, over what is there.)
What of the account is missing is made: folders, and databases that are encrypted when a key is given.
A tree of encrypted files is no package: import-tree takes it. verify says afterwards whether all has arrived.

Examples:
  chat-transfer import --from ~/backup --account ~/chat2 --user 1000000000000001 --key-file ~/.chat-key
  chat-transfer import --from ~/backup/qelmsg_0 --account ~/chat --user 1000000000000001 --into back)";

}  // namespace

void addImportCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<ImportOptions>();
    CLI::App* command = program.add_subcommand("import", "Bring a backup package into an account");
    addPackageOption(*command, options->from);
    addAccountOption(*command, options->account);
    addUserOption(*command, options->user);
    command->add_option("--into", options->into, "Database that gets the messages; \"back\" gets no recent contacts")
        ->type_name("main|back")
        ->check(CLI::IsMember({"main", "back"}).description(""))
        ->capture_default_str();
    addPackageVersionOption(*command, options->packageVersion);
    addDryRunOption(*command, options->dryRun);
    addKeyOptions(*command, options->key);
    command->footer(kFooter);
    setJob(*command, job, std::move(options), runImport);
}

}  // namespace app
