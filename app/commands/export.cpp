#include <algorithm>
#include <iostream>
#include <memory>
#include <set>

#include "app/account/key_source.h"
#include "app/account/open_database.h"
#include "app/base/failure.h"
#include "app/base/interruption.h"
#include "app/base/paths.h"
#include "app/base/printable.h"
#include "app/base/progress_bar.h"
#include "app/base/units.h"
#include "app/commands/commands.h"
#include "app/package/export_check.h"
#include "app/package/export_size.h"
#include "app/places/folder_staging.h"
#include "app/report/left_out.h"
#include "app/report/transfer_rows.h"
#include "host/files/temporary_name.h"
#include "transfer/dbTrans.h"
#include "transfer/format/package_format.h"

namespace app {
namespace {

struct ExportOptions {
    std::string account;
    std::string user;
    std::string to;
    SinceDay since;
    std::string layout = "days";
    std::string packageVersion;
    KeyOptions key;
};

Layout layoutOf(const ExportOptions& options) {
    return options.layout == "packed" ? Layout::packed : Layout::days;
}

void select(dbTrans& transfer, const ExportOptions& options, const Account& account) {
    const CivilDay since = options.since.day();
    const unsigned int code = layoutOf(options) == Layout::days
                                  ? transfer.rdMsgFromDB(since.year, since.month, since.day)
                                  : transfer.rdMsgFromDB2(since.year, since.month, since.day);
    if (code == chattransfer::kSuccess) return;
    FailureWords words{code, "The messages cannot be read", account.database(Database::main), "", ""};
    if (code == chattransfer::kNoTables) {
        words.reason = "there is no table of recent contacts (im_reContact), or no table at all";
        words.remedy = "check --account; --layout packed exports messages without recent contacts";
    }
    throw Failure(words);
}

void write(dbTrans& transfer, Layout layout, const std::string& package, const GivenFolder& given) {
    const unsigned int code = layout == Layout::days ? transfer.wtMsgToFile() : transfer.wtMsgToFile2();
    if (code != chattransfer::kSuccess) throw Failure({code, "The package could not be written", package, "", ""});
    if (holdsAll(transfer, layout)) return;
    throw Failure({0, "The package could not be written whole, and none was left", package,
                   firstReasonBesideAttachments(asGiven(transfer.report, given)),
                   "check that the disk is not full, then run the export again"});
}

// The transfer flushes each file as it writes it.
StagedThing stagedPackage() {
    return {"package",
            tools::temporaryName(""),
            std::string("/") + chattransfer::kPackageName,
            TargetBefore::nothing,
            FilesFlushed::byWriter,
            {chattransfer::kPackageExists, "The export is refused", "", "",
             "move the package away or remove it, or choose another --to"},
            {0, "Another export into this folder is at work", "", "", "wait for it, or choose another --to"}};
}

struct Extent {
    std::set<long long> conversations;
    std::set<CivilDay> days;
};

Extent extentOf(const dbTrans& transfer) {
    Extent extent;
    for (const auto& [key, messages] : transfer.dayMsgMap) {
        for (const imsdk::st_dbMessageBean& message : messages) {
            extent.conversations.insert(message.targetID);
            extent.days.insert({message.year_, message.mon, message.day_});
        }
    }
    return extent;
}

void summarise(Summary& summary, const dbTrans& transfer, Layout layout, const std::string& package) {
    const TransferReport& report = transfer.report;
    const Extent extent = extentOf(transfer);
    summary.add("messages.read", "Messages read", report.messagesSelected);
    summary.add("messages.written", "Messages written", report.messagesWritten);
    const long long leftOut = report.messagesSelected - report.messagesWritten;
    if (layout == Layout::packed) summary.add("messages.leftOut", "Messages left out", leftOut);
    summary.add("conversations.all", "Conversations", static_cast<long long>(extent.conversations.size()));
    summary.add("days", "Days", static_cast<long long>(extent.days.size()));
    summary.add("files.messages", "Message files", report.messageFilesWritten);
    if (layout == Layout::days) summary.add("recentContacts.written", "Recent contacts", report.contactsWritten);
    addAttachmentRows(summary, report, "copied");
    summary.addSize("bytes", "Size", sizeOfFolder(package));
}

void warnOfLoss(RunReport& run, const dbTrans& transfer, Layout layout, long long undated) {
    if (undated > 0) run.warn(counted(undated, "message has", "messages have") + " no date, and no export takes them");
    const long long leftOut = transfer.report.messagesSelected - transfer.report.messagesWritten;
    if (layout == Layout::packed && leftOut > 0) {
        run.warn("the packed layout left out " + counted(leftOut, "message", "messages") +
                 " of the last day in key order; --layout days leaves out none");
    }
    run.leaveOut(transfer.report);
}

int runExport(const ExportOptions& options, RunReport& run) {
    const Account account(options.account);
    const Layout layout = layoutOf(options);
    const SecretText key = findKey(options.key, account);
    dbTrans transfer;
    transfer.dbKey = key.text();
    openDatabase(transfer, account, Database::main);
    if (layout == Layout::days) openDatabase(transfer, account, Database::back);
    const InterruptsMark interrupts;
    FolderStaging staging((resolvedPath(options.to) / chattransfer::kPackageName).string(), stagedPackage());
    staging.enter();
    run.given = {options.to, staging.place(), staging.place()};

    ProgressBar progress(run.phases,
                         {{"Reading the messages", 35}, {"Writing message files", 35}, {"Copying attachments", 25}});
    transfer.progressListener = &progress;
    transfer.backupPath = ".";
    transfer.packageSubDir = options.user;
    transfer.packageVersion = options.packageVersion;
    long long undated = 0;
    const auto work = [&] {
        progress.begin("Reading the messages", {});
        select(transfer, options, account);
        leaveIfInterrupted();
        requireWholeSelection(transfer.report, account.database(Database::main));
        undated = countUndated(transfer);
        const ExportSize size = sizeOfExport(transfer, account);
        progress.finish();
        std::cout << "To export: " << inWords(size) << '\n' << std::flush;
        requireRoom(size, staging.place());
        progress.begin("Writing the package", {{1, "Writing message files"}, {2, "Copying attachments"}});
        write(transfer, layout, staging.target(), run.given);
        leaveIfInterrupted();
    };
    interruptible(work, [] {
        return FailureWords{0, "Interrupted; no package was made", "", "", "run the same command again"};
    });
    progress.begin("Flushing to the disk", {});
    staging.publish();
    progress.complete();

    summarise(run.summary, transfer, layout, staging.target());
    run.printSummary("Exported to " + printable(staging.target()));
    warnOfLoss(run, transfer, layout, undated);
    return unexpectedlyFailedAttachments(transfer) == 0 ? kDone : kFailed;
}

constexpr const char* kFooter =
    R"(The package appears as DIR/qelmsg_0 when it is complete; an interrupted export leaves none.

The two layouts:
  days    One message file per 250 messages of a day, and the recent contacts. Leaves out nothing.
  packed  Fewer files, with up to 1000 messages each, and NO recent contacts. It leaves out messages: days are
          taken in the order of their names (2024_10_1 comes before 2024_9_30), and where a file becomes full
          inside the last of them, the rest of that day is not written. How many were left out is printed.

Examples:
  chat-transfer export --account ~/chat --user 1000000000000001 --to ~/backup --key-file ~/.chat-key
  chat-transfer export --account ~/chat --user 1000000000000001 --to ~/backup --since 2024-01-01)";

}  // namespace

void addExportCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<ExportOptions>();
    CLI::App* command = program.add_subcommand("export", "Write an account's history into a backup package");
    addAccountOption(*command, options->account);
    addUserOption(*command, options->user);
    addFolderOption(*command, "--to", options->to, "Folder that gets the package qelmsg_0; made when missing");
    addSinceOption(*command, options->since, "Only messages of this day and later; without it, all messages");
    command
        ->add_option("--layout", options->layout,
                     "How messages are put into files; \"packed\" leaves out some, see below")
        ->type_name("days|packed")
        ->check(CLI::IsMember({"days", "packed"}).description(""))
        ->capture_default_str();
    addPackageVersionOption(*command, options->packageVersion);
    addKeyOptions(*command, options->key);
    command->footer(kFooter);
    setJob(*command, job, std::move(options), runExport);
}

}  // namespace app
