#include "app/command_view.h"

#include <functional>
#include <iostream>
#include <memory>
#include <utility>

#include "app/failure.h"
#include "app/folder_staging.h"
#include "app/left_out.h"
#include "app/paths.h"
#include "app/printable.h"
#include "app/progress_bar.h"
#include "app/text_table.h"
#include "app/tree_conversion.h"
#include "app/units.h"
#include "app/view/viewer.h"
#include "app/view_source.h"

namespace app {
namespace {

struct ViewOptions {
    std::string from;
    std::string to;
    std::string user;
    bool tree = false;
    KeyOptions key;
};

constexpr StagedThing kStagedPages{"set of pages", ".chat-transfer-view.part", TargetBefore::emptyFolder};

view::ViewProgress shownBy(ProgressBar& bar) {
    return [&bar](long long done, long long all) {
        const std::string text = grouped(done) + "/" + grouped(all) + " messages";
        bar.onProgress(0, 1, static_cast<int>(done * 100 / all), text.c_str());
    };
}

void printSummary(const view::ViewCounts& counts, const ViewSource& source, const std::string& target,
                  const Stopwatch& watch) {
    std::cout << "Made pages of " << printable(source.root) << " in " << printable(target) << '\n';
    Summary summary;
    summary.add("Messages", counts.messages);
    summary.add("Conversations", counts.conversations);
    summary.add("Files written", counts.files);
    summary.add("Attachments copied", counts.media.copied);
    summary.add("Attachments missing", counts.media.missing);
    summary.addIfAny("Attachments refused", counts.media.refused);
    summary.addIfAny("Attachments failed", counts.media.failed);
    summary.addIfAny("Notes and rooms, not shown", source.notShown);
    summary.add("Size", humanSize(sizeOfFolder(target)));
    summary.add("Time", humanDuration(watch.seconds()));
    summary.print(std::cout);
    std::cout << "Open " << printable(target) << "/index.html in a browser.\n";
}

// Says what the pages do not show. True when nothing was lost on the way that the package or tree has.
bool shownWhole(const view::ViewCounts& counts, const ViewSource& source) {
    const auto complain = [](long long count, const std::string& words) {
        if (count > 0) warn(grouped(count) + " " + words);
    };
    complain(counts.media.missing, "attachments are not in it: their messages say so");
    complain(counts.media.refused, "attachments have names that lead elsewhere, or are no files: they were not copied");
    complain(counts.media.failed, "attachments could not be copied");
    complain(source.leftOut.skippedCount, "files or parts could not be read, see below");
    printLeftOut(source.leftOut, std::cerr);
    return counts.media.failed == 0 && source.leftOut.skippedCount == 0;
}

// Nothing is read before it is clear that the pages can be written.
int makePages(const ViewOptions& options, const std::string& root, const std::function<ViewSource()>& read) {
    const Stopwatch watch;
    const std::string target = resolvedPath(options.to).string();
    refuseTargetInside(root, target);
    FolderStaging staging(target, kStagedPages);
    ProgressBar progress;
    progress.begin("Reading the messages", {{1, "Writing pages"}});
    ViewSource source = read();
    const view::ViewCounts counts =
        view::writeView(source.history, std::move(source.attachments), staging.folder(), shownBy(progress));
    staging.publish();
    progress.complete();
    printSummary(counts, source, target, watch);
    return shownWhole(counts, source) ? kDone : kFailed;
}

int runView(const ViewOptions& options) {
    const TreeSource tree = findTreeSource(options.from, options.user, options.tree);
    if (tree.root.empty()) {
        const PackagePlace place = findPackage(options.from, options.user);
        return makePages(options, packageRootOf(place), [&] { return readPackageForView(place, options.user); });
    }
    const SecretText key = findTreeKey(options.key, tree.root, KeyPurpose::unlock);
    return makePages(options, tree.root, [&] { return readTreeForView(tree, key.text()); });
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
