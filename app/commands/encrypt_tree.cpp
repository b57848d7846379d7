#include <filesystem>
#include <memory>

#include "app/account/key_source.h"
#include "app/base/failure.h"
#include "app/base/interruption.h"
#include "app/base/paths.h"
#include "app/base/printable.h"
#include "app/commands/commands.h"
#include "app/places/folder_staging.h"
#include "app/places/tree_place.h"
#include "app/tree/tree_conversion.h"
#include "transfer/format/tree_format.h"

namespace app {
namespace {

struct EncryptTreeOptions {
    std::string from;
    std::string to;
    std::string user;
    KeyOptions key;
};

std::string requireFolder(const std::string& given) {
    std::string folder = resolvedPath(given).string();
    constexpr const char* kRemedy = "give with --from the folder that holds the conversations' folders";
    std::error_code ignored;
    if (!std::filesystem::is_directory(folder, ignored)) {
        throw Failure({0, "There is no plain tree", folder, "it is no folder", kRemedy});
    }
    if (std::filesystem::is_directory(folder + chattransfer::kTreeFolder, ignored)) {
        throw Failure({0, "There is no plain tree", folder, "it holds qelbackup, the folder of whole trees", kRemedy});
    }
    return folder;
}

// A tree from which folders are missing is no copy.
void requireWhole(const ConversionCounts& counts) {
    if (counts.failed == 0) return;
    const TransferReport::Skipped& first = counts.report.skipped.front();
    throw Failure({0, "The plain tree cannot be read whole, and no tree was left", first.what, first.reason,
                   "check its permissions"});
}

void summarise(Summary& summary, const ConversionCounts& counts, const std::string& target) {
    summary.add("files.converted", "Files encrypted", counts.converted);
    summary.add("files.copied", "Other files copied", counts.copied);
    summary.add("files.leftOut", "Left out", counts.report.skippedCount);
    summary.addSize("bytes", "Size", sizeOfFolder(target));
}

int runEncryptTree(const EncryptTreeOptions& options, RunReport& run) {
    const std::string from = requireFolder(options.from);
    const std::string target = treeFolderIn(options.to, options.user);
    refuseTargetInside(from, target);
    const SecretText key = requireTreeKey(options.key, options.to, KeyPurpose::choose);
    const InterruptsMark interrupts;
    FolderStaging staging(target, stagedTree());
    ProgressBar progress(run.phases);
    progress.begin("Encrypting", {{1, "Encrypting"}});
    const ConversionCounts counts = convertTree(CipherDirection::encrypt, from, staging.folder(), key.text(), progress);
    progress.finish();
    requireWhole(counts);
    staging.publish();
    progress.complete();
    summarise(run.summary, counts, target);
    run.printSummary("Encrypted into " + printable(target));
    run.leaveOut(counts.report);
    return kDone;
}

constexpr const char* kFooter =
    R"(The plain tree is what stands directly in a user's tree: a folder for each conversation, named by its id, with message
files (.mg), and recent contacts (.ct), notes (.nt) and rooms (.rm) anywhere. These are encrypted under their names. All
other files, and everything in imfiles/, are copied as they are. Links, FIFOs and the like are left out.
The tree appears as DIR/qelbackup/ID, and only when it is complete: import-tree --from DIR brings it into an account. Its key
has to be that of the account. For a plain tree to try things with, see sample-tree.

Example:
  chat-transfer encrypt-tree --from plain --to backup --user 1000000000000001 --key-file ~/.chat-key)";

}  // namespace

void addEncryptTreeCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<EncryptTreeOptions>();
    CLI::App* command = program.add_subcommand("encrypt-tree", "Make an importable tree out of a plain one");
    addFolderOption(*command, "--from", options->from, "Folder of the plain tree");
    addFolderOption(*command, "--to", options->to, "Folder that gets the tree, as qelbackup/<ID>");
    addUserOption(*command, options->user);
    addKeyOptions(*command, options->key);
    command->footer(kFooter);
    setJob(*command, job, std::move(options), runEncryptTree);
}

}  // namespace app
