#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>

#include "app/account/key_source.h"
#include "app/account/open_database.h"
#include "app/base/failure.h"
#include "app/base/interruption.h"
#include "app/base/paths.h"
#include "app/base/progress_bar.h"
#include "app/base/units.h"
#include "app/commands/commands.h"
#include "app/commands/dry_run.h"
#include "app/places/tree_place.h"
#include "app/report/refused_records.h"
#include "app/report/transfer_rows.h"
#include "app/tree/tree_import_files.h"
#include "host/files/file_handle.h"
#include "host/tools.h"
#include "transfer/dbTrans.h"
#include "transfer/format/account_folders.h"
#include "transfer/format/tree_format.h"

namespace app {
namespace {

struct ImportTreeOptions {
    std::string from;
    std::string account;
    std::string user;
    std::string into = "main";
    bool removeDecrypted = false;
    bool dryRun = false;
    std::string packageVersion;
    KeyOptions key;
};

Database databaseOf(const ImportTreeOptions& options) {
    return options.into == "back" ? Database::back : Database::main;
}

bool intoMain(const ImportTreeOptions& options) {
    return databaseOf(options) == Database::main;
}

// Two imports of one tree would take the files out of each other's hands. The lock ends with the process.
tools::detail::FileHandle lockTree(const std::string& root) {
    tools::detail::FileHandle folder = tools::detail::openFolder(AT_FDCWD, root.c_str());
    if (!folder.valid()) {
        throw Failure({0, "The tree cannot be read", root, systemWords(errno), "check its permissions"});
    }
    if (flock(folder.get(), LOCK_EX | LOCK_NB) == 0) return folder;
    throw Failure({0, "Another import of this tree is at work", root, "", "wait until it is done"});
}

// Paths of the transfer stay short this way, and no folder above the tree can lend its number to a conversation.
void enterTree(dbTrans& transfer, const TreePlace& place, const ImportTreeOptions& options) {
    if (chdir(place.parent.c_str()) != 0) {
        throw Failure(
            {0, "The tree's folder cannot be entered", place.parent, systemWords(errno), "check its permissions"});
    }
    transfer.backupPath = ".";
    transfer.packageSubDir = options.user;
    transfer.packageVersion = options.packageVersion;
}

void makeVideoFolder(const Account& account) {
    const std::string videos = account.root() + chattransfer::kVideoFolder;
    if (tools::createDir(videos.c_str()) == 0) return;
    throw Failure({0, "A folder of the account cannot be made", videos, systemWords(errno),
                   "choose a place that you may write to"});
}

void setUserFolders(dbTrans& transfer, const Account& account) {
    transfer.userAudioDir = account.root() + chattransfer::kAudioFolder;
    transfer.userFileDir = account.root() + chattransfer::kFileFolder;
    transfer.userImageDir = account.root() + chattransfer::kImageFolder;
    transfer.userVideoDir = account.root() + chattransfer::kVideoFolder;
}

[[noreturn]] void failOnVersion(const dbTrans& transfer, const GivenFolder& given) {
    FailureWords words{chattransfer::kWrongVersion, "The import stopped; what earlier files brought stays", "", "",
                       "take that file out of the tree, or give its version with --package-version; import again: "
                       "nothing doubles"};
    const auto& skipped = transfer.report.skipped;
    const auto other = std::find_if(skipped.rbegin(), skipped.rend(), [](const TransferReport::Skipped& one) {
        return one.kind == chattransfer::Omission::treeFileOtherVersion;
    });
    if (other != skipped.rend()) {
        words.path = given.nameOf(other->what);
        words.reason = other->reason;
    }
    throw Failure(words);
}

void requireDone(int result, const dbTrans& transfer, const imsdk::dbUtils& db, const FailureWords& words,
                 const GivenFolder& given) {
    const auto code = static_cast<unsigned int>(result);
    if (code == chattransfer::kSuccess) return;
    if (code == chattransfer::kWrongVersion) failOnVersion(transfer, given);
    throw Failure({code, words.what, words.path, db.lastError(),
                   "close the client, check that the disk is not full, and import again: nothing doubles"});
}

void importIntoMain(dbTrans& transfer, const Account& account, const GivenFolder& given, ProgressBar& progress) {
    progress.begin(
        "Importing",
        {{0, "Reading recent contacts"}, {1, "Importing messages"}, {2, "Reading notes"}, {3, "Reading rooms"}});
    requireDone(transfer.rdAllFromFileNJ(), transfer, transfer.mainDb,
                {0, "The messages could not be written; none of them was kept", account.database(Database::main)},
                given);
    leaveIfInterrupted();
    requireDone(transfer.wtAllToDBNJ(), transfer, transfer.pluginDb,
                {0, "The notes and rooms could not be written; the messages stay", account.pluginDatabase()}, given);
}

void importIntoBack(dbTrans& transfer, const Account& account, const GivenFolder& given, bool removeDecrypted,
                    ProgressBar& progress) {
    progress.begin("Importing messages", {});
    requireDone(transfer.readMsgFromFileNJBack(removeDecrypted), transfer, transfer.backDb,
                {0, "The messages could not be written; none of them was kept", account.database(Database::back)},
                given);
}

long long countThere(const std::vector<std::string>& paths) {
    return std::count_if(paths.begin(), paths.end(),
                         [](const std::string& path) { return tools::isFileExsit(path) != 0; });
}

// What goes with the main database only.
void addRowsOfMain(Summary& summary, const dbTrans& transfer) {
    const TransferReport& report = transfer.report;
    addContactRows(summary, transfer);
    summary.add("notes.written", "Notes inserted", report.notesInserted);
    summary.add("notes.duplicate", "Notes there already", report.notesDuplicate);
    summary.addIfAny("notes.refused", "Notes refused", refusedNotes(transfer));
    summary.add("rooms.written", "Rooms inserted", report.roomsInserted);
    summary.add("rooms.duplicate", "Rooms there already", report.roomsDuplicate);
    summary.addIfAny("rooms.refused", "Rooms refused", refusedRooms(transfer));
    addAttachmentRows(summary, report, "moved");
}

void summarise(Summary& summary, dbTrans& transfer, const ImportTreeOptions& options, const TreeImportFiles& files,
               unsigned long long bytes) {
    addMessageRows(summary, transfer.report);
    summary.add("conversations.all", "Conversations", files.conversations(transfer));
    summary.add("conversations.new", "Conversations new", transfer.report.tablesCreated);
    if (intoMain(options)) addRowsOfMain(summary, transfer);
    summary.add("files.notDecrypted", "Files not decryptable", files.notDecrypted);
    summary.add("files.notParsed", "Files not parsable", countNotParsed(transfer.report));
    if (options.removeDecrypted) {
        const std::vector<std::string> all = files.all();
        summary.add("files.removed", "Decrypted copies removed", static_cast<long long>(all.size()) - countThere(all));
    }
    summary.addSize("bytes", "Size of the tree", bytes);
}

// True when all of the tree arrived.
bool arrivedWhole(RunReport& run, const dbTrans& transfer, const TreeImportFiles& files) {
    const TransferReport& report = transfer.report;
    const bool lost = run.warnOf(
        {{files.notDecrypted,
          "of the tree's files cannot be decrypted and stay as they are, see below; if they were encrypted with "
          "another "
          "key, they cannot go into this account"},
         {countNotParsed(report), "of the tree's files cannot be read or understood, see below"},
         {report.messagesRefused, "messages were refused by the database, see below"},
         {refusedContacts(transfer), "recent contacts were refused by the database"},
         {refusedNotes(transfer), "notes were refused by the database, see below"},
         {refusedRooms(transfer), "rooms were refused by the database, see below"},
         {report.attachmentsFailed, "attachments could not be moved, see below"}});
    run.leaveOut(report);
    return !lost;
}

// What is no failure, but should be known.
void remark(RunReport& run, const ImportTreeOptions& options, const TreeImportFiles& files) {
    if (files.contacts.size() > 1) {
        run.warn("the tree holds " + grouped(static_cast<long long>(files.contacts.size())) +
                 " files of recent contacts; only the last one counts");
    }
    const long long kept = options.removeDecrypted ? countThere(files.all()) : 0;
    if (kept > 0)
        run.warn(counted(kept, "decrypted copy was", "decrypted copies were") + " kept: not all of it has arrived");
}

void importAll(dbTrans& transfer, const ImportTreeOptions& options, const Account& account, const GivenFolder& given,
               ProgressBar& progress) {
    if (intoMain(options)) {
        importIntoMain(transfer, account, given, progress);
    } else {
        importIntoBack(transfer, account, given, options.removeDecrypted, progress);
    }
}

// All messages of a tree go into one transaction.
std::string whatIsWritten(const TransferReport& report) {
    return report.messagesInserted > 0 ? "the messages have been written" : "nothing has been written to the databases";
}

// Ahead of the import, which then finds the files decrypted.
TreeImportFiles decrypt(dbTrans& transfer, const ImportTreeOptions& options, const ImportSource& source,
                        ProgressBar& progress) {
    progress.begin("Decrypting the tree", {});
    TreeImportFiles files =
        decryptFiles(transfer, intoMain(options) ? TreeKinds::all : TreeKinds::messages, source.given());
    progress.finish();
    requireTreeVersion(files, transfer, source.given());
    source.settle(files, transfer.report);
    return files;
}

void openTarget(dbTrans& transfer, const Account& account, const ImportTreeOptions& options) {
    makeVideoFolder(account);
    setUserFolders(transfer, account);
    openForWriting(transfer, account, databaseOf(options));
    if (intoMain(options)) openPluginDatabase(transfer, account);
}

int conclude(RunReport& run, const ImportTreeOptions& options, const dbTrans& transfer, const TreeImportFiles& files,
             const Account& account) {
    run.printSummary(importedInto(account.database(databaseOf(options)), options.dryRun));
    const bool whole = arrivedWhole(run, transfer, files);
    remark(run, options, files);
    return whole ? kDone : kFailed;
}

int runImportTree(const ImportTreeOptions& options, RunReport& run) {
    run.dryRun = options.dryRun;
    const TreePlace place = findTree(options.from, options.user);
    run.given = place.given;
    const Account account(options.account);
    const SecretText key = findKey(options.key, account);
    dbTrans transfer;
    transfer.dbKey = key.text();
    checkForWriting(transfer, account, databaseOf(options));
    // Copies of private texts must not stay behind; a decryption in place can be left at any moment.
    std::optional<InterruptsMark> interrupts;
    if (options.dryRun) interrupts.emplace();
    const tools::detail::FileHandle lock = lockTree(place.root);
    const unsigned long long bytes = sizeOfFolder(place.root);  // before attachments leave it
    const ImportSource source(place, options.user, transfer, options.dryRun);
    enterTree(transfer, source.place(), options);

    ProgressBar progress(run.phases, {{"Decrypting the tree", 50}, {"Importing messages", 48}});
    transfer.progressListener = &progress;
    const TreeImportFiles files = decrypt(transfer, options, source, progress);
    const ImportTarget target(account, transfer, options.dryRun);
    openTarget(transfer, target.account(), options);
    if (!interrupts) interrupts.emplace();
    const auto work = [&] {
        interruptible([&] { importAll(transfer, options, account, place.given, progress); },
                      [&] { return wordsForInterruptedImport(whatIsWritten(transfer.report), options.dryRun); });
        if (intoMain(options) && options.removeDecrypted) removeImported(transfer, files);
    };
    summarised(work, [&] { summarise(run.summary, transfer, options, files, bytes); });
    progress.complete();
    return conclude(run, options, transfer, files, account);
}

constexpr const char* kFooter =
    R"(Into "main" goes the whole tree: messages, recent contacts, notes and rooms; attachments are moved into the account's
folders audio/, file/, image/ and video/. Into "back" go the messages only.
An import decrypts the tree's files where they are (a.mg becomes a.mg.decrypt) and reads the decrypted copies. They stay
for another import unless --remove-decrypted is given: then those go of which everything has arrived.
Importing a tree again adds nothing twice. A conversation of more than 5000 messages is cut back to its newest 3000.
What of the account is missing is made: folders, and databases that are encrypted when a key is given. The key is the
one of the tree and of the databases alike.
encrypt-tree makes such a tree out of a plain one. verify says afterwards whether all has arrived.

Examples:
  chat-transfer import-tree --from ~/backup --account ~/chat --user 1000000000000001 --key-file ~/.chat-key
  chat-transfer import-tree --from ~/backup --account ~/chat --user 1000000000000001 --into back --remove-decrypted)";

}  // namespace

void addImportTreeCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<ImportTreeOptions>();
    CLI::App* command = program.add_subcommand("import-tree", "Bring an encrypted tree into an account");
    addTreeOption(*command, options->from);
    addAccountOption(*command, options->account);
    addUserOption(*command, options->user);
    command
        ->add_option("--into", options->into,
                     "Database that gets the messages; contacts, notes, rooms and attachments go only with \"main\"")
        ->type_name("main|back")
        ->check(CLI::IsMember({"main", "back"}).description(""))
        ->capture_default_str();
    command->add_flag("--remove-decrypted", options->removeDecrypted,
                      "Remove the decrypted files of which everything has arrived; they are the only copies");
    addPackageVersionOption(*command, options->packageVersion);
    addDryRunOption(*command, options->dryRun);
    addKeyOptions(*command, options->key);
    command->footer(kFooter);
    setJob(*command, job, std::move(options), runImportTree);
}

}  // namespace app
