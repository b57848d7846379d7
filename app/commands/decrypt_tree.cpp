#include <iostream>
#include <memory>

#include "app/account/key_source.h"
#include "app/base/failure.h"
#include "app/base/interruption.h"
#include "app/base/paths.h"
#include "app/base/printable.h"
#include "app/base/units.h"
#include "app/commands/commands.h"
#include "app/places/folder_staging.h"
#include "app/places/tree_place.h"
#include "app/report/left_out.h"
#include "app/tree/tree_conversion.h"

namespace app {
namespace {

struct DecryptTreeOptions {
    std::string from;
    std::string to;
    std::string user;
    KeyOptions key;
};

// A tree of which nothing decrypts was given another key. Its name must stay free for the next try.
void requireFittingKey(const ConversionCounts& counts, const std::string& root) {
    if (counts.failed == 0 || counts.converted > 0 || counts.takenDecrypted > 0) return;
    const TransferReport::Skipped& first = counts.report.skipped.front();
    printLeftOut(counts.report, std::cerr);
    throw Failure({0, "None of the tree's files can be decrypted, and nothing was written", root,
                   first.what + ": " + first.reason, "check the key"});
}

void summarise(Summary& summary, const ConversionCounts& counts, const std::string& target) {
    summary.add("files.converted", "Files decrypted", counts.converted);
    summary.add("files.takenDecrypted", "Decrypted copies taken over", counts.takenDecrypted);
    summary.add("files.copied", "Other files copied", counts.copied);
    summary.add("files.notDecrypted", "Files not decrypted", counts.failed);
    summary.add("files.leftOut", "Left out", counts.report.skippedCount - counts.failed);
    summary.addSize("bytes", "Size", sizeOfFolder(target));
}

bool decryptedWhole(RunReport& run, const ConversionCounts& counts) {
    if (counts.failed > 0) run.warn(grouped(counts.failed) + " files or folders could not be decrypted, see below");
    run.leaveOut(counts.report);
    return counts.failed == 0;
}

int runDecryptTree(const DecryptTreeOptions& options, RunReport& run) {
    const TreePlace place = findTree(options.from, options.user);
    run.given = place.given;
    const std::string target = resolvedPath(options.to).string();
    refuseTargetInside(place.root, target);
    const SecretText key = requireTreeKey(options.key, options.to, KeyPurpose::unlock);
    // Decrypted texts must not stay in the hidden folder.
    const InterruptsMark interrupts;
    FolderStaging staging(target, stagedTree());
    ProgressBar progress(run.phases);
    progress.begin("Decrypting", {{1, "Decrypting"}});
    const ConversionCounts counts =
        convertTree(CipherDirection::decrypt, place.root, staging.folder(), key.text(), progress);
    progress.finish();
    requireFittingKey(counts, place.root);
    staging.publish();
    progress.complete();
    summarise(run.summary, counts, target);
    run.printSummary("Decrypted into " + printable(target));
    return decryptedWhole(run, counts) ? kDone : kFailed;
}

constexpr const char* kFooter =
    R"(The tree itself stays as it is. Message files (.mg), recent contacts (.ct), notes (.nt) and rooms (.rm) are decrypted
under their names; decrypted copies that an import left (a.mg.decrypt) become a.mg. All other files, and everything in
imfiles/, are copied as they are. Files that do not decrypt are listed with the reason, and the exit code is 1 then.
The result is private messages in the clear: remove it when you are done. To see only how much a tree holds, use inspect.

Example:
  chat-transfer decrypt-tree --from backup --to plain --user 1000000000000001 --key-file ~/.chat-key)";

}  // namespace

void addDecryptTreeCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<DecryptTreeOptions>();
    CLI::App* command = program.add_subcommand("decrypt-tree", "Make the plain form of a tree, for support cases");
    addTreeOption(*command, options->from);
    addFolderOption(*command, "--to", options->to, "Folder that the plain tree becomes; it must not exist");
    addUserOption(*command, options->user);
    addKeyOptions(*command, options->key);
    command->footer(kFooter);
    setJob(*command, job, std::move(options), runDecryptTree);
}

}  // namespace app
