#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <utility>

#include "app/account/key_source.h"
#include "app/base/interruption.h"
#include "app/base/paths.h"
#include "app/base/printable.h"
#include "app/base/progress_bar.h"
#include "app/base/units.h"
#include "app/commands/commands.h"
#include "app/commands/view_source.h"
#include "app/places/folder_staging.h"
#include "app/view/viewer.h"
#include "host/files/temporary_name.h"

namespace app {
namespace {

struct ViewOptions {
    std::string from;
    std::string to;
    std::string user;
    bool tree = false;
    KeyOptions key;
};

StagedThing stagedPages() {
    return {"set of pages",
            tools::temporaryName("view"),
            "",
            TargetBefore::emptyFolder,
            FilesFlushed::byStaging,
            {0, "The target is not an empty folder, and what is there is never overwritten", "", "",
             "move it away or remove it, or choose another --to"},
            {0, "Another set of pages is being written into this folder", "", "",
             "wait until that is done, or choose another --to"}};
}

view::ViewProgress shownBy(ProgressBar& bar) {
    return [&bar](long long done, long long all) {
        const std::string text = grouped(done) + "/" + grouped(all) + " messages";
        bar.onProgress(0, 1, static_cast<int>(done * 100 / all), text.c_str());
    };
}

void summarise(Summary& summary, const view::ViewCounts& counts, const ViewSource& source, const std::string& target) {
    summary.add("messages.written", "Messages", counts.messages);
    summary.add("conversations.all", "Conversations", counts.conversations);
    summary.add("files.written", "Files written", counts.files);
    summary.add("attachments.copied", "Attachments copied", counts.media.copied);
    summary.add("attachments.missing", "Attachments missing", counts.media.missing);
    summary.addIfAny("attachments.refused", "Attachments refused", counts.media.refused);
    summary.addIfAny("attachments.failed", "Attachments failed", counts.media.failed);
    summary.addIfAny("notShown", "Notes and rooms, not shown", source.notShown);
    summary.addSize("bytes", "Size", sizeOfFolder(target));
}

// Says what the pages do not show. True when nothing was lost on the way that the package or tree has.
bool shownWhole(RunReport& run, const view::ViewCounts& counts, const ViewSource& source) {
    // What is missing or refused is so in the package, too: the pages lose nothing by it.
    static_cast<void>(run.warnOf(
        {{counts.media.missing, "attachments are not in it: their messages say so"},
         {counts.media.refused, "attachments have names that lead elsewhere, or are no files: they were not copied"},
         {counts.media.failed, "attachments could not be copied"},
         {source.leftOut.skippedCount, "files or parts could not be read, see below"}}));
    run.leaveOut(source.leftOut);
    return counts.media.failed == 0 && source.leftOut.skippedCount == 0;
}

// Nothing is read before it is clear that the pages can be written.
int makePages(const ViewOptions& options, RunReport& run, const std::string& root,
              const std::function<ViewSource()>& read) {
    const std::string target = resolvedPath(options.to).string();
    refuseTargetInside(root, target);
    // Private texts must not stay in the hidden folder.
    const InterruptsMark interrupts;
    FolderStaging staging(target, stagedPages());
    ProgressBar progress(run.phases);
    std::optional<ViewSource> source;
    view::ViewCounts counts;
    const auto work = [&] {
        progress.begin("Reading the messages", {{1, "Writing pages"}});
        source = read();
        counts = view::writeView(source->history, std::move(source->attachments), staging.folder(), shownBy(progress));
        leaveIfInterrupted();
    };
    interruptible(work, wordsForNothingDone);
    staging.publish();
    progress.complete();
    summarise(run.summary, counts, *source, target);
    run.printSummary("Made pages of " + printable(source->root) + " in " + printable(target));
    std::cout << "Open " << printable(target) << "/index.html in a browser.\n";
    return shownWhole(run, counts, *source) ? kDone : kFailed;
}

int runView(const ViewOptions& options, RunReport& run) {
    const TreeSource tree = findTreeSource(options.from, options.user, options.tree);
    if (tree.root.empty()) {
        const PackagePlace place = findPackage(options.from, options.user);
        run.given = place.given;
        return makePages(options, run, place.root(), [&] { return readPackageForView(place, options.user); });
    }
    const SecretText key = findTreeKey(options.key, tree.root, KeyPurpose::unlock);
    return makePages(options, run, tree.root, [&] { return readTreeForView(tree, key.text()); });
}

constexpr const char* kFooter =
    R"(The pages are files: open index.html from the disk, in any browser, without a network. They show the conversations day by
day with pictures, voice messages and files, search all messages, and count them. Nothing in a message runs or loads
anything. They are private messages in the clear: only you may read the folder, so keep it as you keep the backup.

DIR can hold the package qelmsg_0 or the tree qelbackup/ID, or be the package or a plain tree itself. Where it holds both,
the package is shown; --tree asks for the tree. Of a tree, notes and rooms are not shown. Times of day are those of this
machine's time zone. The folder must be empty or not exist; when it appears, all of it is there.

Examples:
  chat-transfer view --from ~/backup --user 1000000000000001 --to ~/pages
  chat-transfer view --from ~/backup --user 1000000000000001 --to ~/pages --tree --key-file ~/.chat-key)";

}  // namespace

void addViewCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<ViewOptions>();
    CLI::App* command =
        program.add_subcommand("view", "Make pages for a browser that show what a package or a tree holds");
    addFolderOption(*command, "--from", options->from, "Folder that holds the package or the tree, see below");
    addFolderOption(*command, "--to", options->to, "Folder that gets the pages; it must be empty or not exist");
    addUserOption(*command, options->user);
    command->add_flag("--tree", options->tree, "Show a tree, also where there is a package");
    addKeyOptions(*command, options->key);
    command->footer(kFooter);
    setJob(*command, job, std::move(options), runView);
}

}  // namespace app
