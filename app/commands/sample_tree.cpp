#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>

#include "app/attachments/message_types.h"
#include "app/base/failure.h"
#include "app/base/paths.h"
#include "app/base/printable.h"
#include "app/base/progress_bar.h"
#include "app/commands/commands.h"
#include "app/sample/sample_tree.h"
#include "host/tools.h"
#include "transfer/base/progress.h"
#include "transfer/dbTrans.h"
#include "transfer/format/tree_body.h"

namespace app {
namespace {

struct SampleTreeOptions {
    std::string to;
    std::string user;
    TreeSampleSettings settings;
};

std::string faultOfId(const std::string& user) {
    constexpr std::size_t kMostDigits = 15;  // of an id that JSON holds exactly everywhere
    const bool digits = std::all_of(user.begin(), user.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (digits && user.size() <= kMostDigits + 1 && user[0] != '0' && tools::atoint64(user.c_str()) < (1LL << 53))
        return "";
    return "needs the user's id in decimal, a number from 1 to 9007199254740991";
}

// A sample never mixes with what is there.
std::string emptyFolder(const std::string& given) {
    std::string path = resolvedPath(given).string();
    if (tools::createDir(path.c_str()) != 0) {
        throw Failure({0, "The folder for the tree cannot be made", path, systemWords(errno),
                       "choose a place that you may write to"});
    }
    std::error_code error;
    if (std::filesystem::is_empty(path, error) && !error) return path;
    throw Failure({0, "The folder for the tree is not empty, and a sample never writes into another one's folder", path,
                   error ? error.message() : "", "choose another --to, or remove this one"});
}

void summarise(Summary& summary, const TreeSampleCounts& counts, const SampleTreeOptions& options) {
    summary.add("user", "User", printable(options.user));
    summary.add("messages.written", "Messages", counts.messages);
    summary.add("conversations.all", "Conversations", options.settings.plan.conversations);
    summary.add("files.messages", "Message files", counts.messageFiles);
    for (const auto& [type, messages] : counts.messagesByType) {
        if (chattransfer::carriesTreeFiles(type))
            summary.add("messages." + typeName(type), "Of them " + typeName(type), messages);
    }
    summary.add("recentContacts.written", "Recent contacts", counts.contacts);
    summary.add("notes.written", "Notes", counts.notes);
    summary.add("rooms.written", "Rooms", counts.rooms);
}

int runSampleTree(const SampleTreeOptions& options, RunReport& run) {
    const std::string folder = emptyFolder(options.to);
    TreeSampleSettings settings = options.settings;
    settings.ownId = tools::atoint64(options.user.c_str());

    ProgressBar progress(run.phases);
    dbTrans reporter;
    reporter.progressListener = &progress;
    progress.begin("Making the sample tree", {{1, "Writing conversations"}});
    const auto total = static_cast<int>(settings.plan.conversations);
    TreeSample sample(std::move(settings), folder + "/");
    chattransfer::ProgressThrottle throttle;
    sample.write([&](std::size_t done) {
        const auto number = static_cast<int>(done);
        if (throttle.due(number == total)) reporter.progress(1, total, number);
    });
    progress.complete();
    summarise(run.summary, sample.counts(), options);
    run.printSummary("Made the plain sample tree " + printable(folder));
    return kDone;
}

constexpr const char* kFooter =
    R"(The tree is plain: encrypt-tree makes an importable one of it. It holds messages with every kind of attachment (voice,
image, file, pictures, video), recent contacts, notes of every type and rooms. The same options give the same tree, on
every machine. The last day is always 2024-06-30.

Examples:
  chat-transfer sample-tree --to ~/plain-tree --user 1000000000000001
  chat-transfer sample-tree --to ~/big-tree --user 1000000000000001 --conversations 2000 --messages 200000 --per-file 10)";

}  // namespace

void addSampleTreeCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<SampleTreeOptions>();
    CLI::App* command = program.add_subcommand("sample-tree", "Make a plain tree that looks alive, to try things with");
    addFolderOption(*command, "--to", options->to, "Folder of the tree; made when missing, else it has to be empty");
    addUserOption(*command, options->user);
    command->get_option("--user")->check(faultOfId);
    SamplePlan& plan = options->settings.plan;
    const auto addNumber = [command](const std::string& name, long long& number, long long most,
                                     const std::string& help) {
        command->add_option(name, number, help)
            ->type_name("N")
            ->check(CLI::Range(1LL, most).description(""))
            ->capture_default_str();
    };
    addNumber("--conversations", plan.conversations, 1000000, "How many conversations");
    addNumber("--messages", plan.messages, 100000000, "How many messages in all of them");
    addNumber("--days", plan.days, 18250, "How many days they span");
    addNumber("--per-file", options->settings.messagesPerFile, 100000, "How many messages a file holds at most");
    command->add_option("--seed", plan.seed, "Another number makes another tree")
        ->type_name("N")
        ->capture_default_str();
    addPackageVersionOption(*command, options->settings.version);
    command->footer(kFooter);
    setJob(*command, job, std::move(options), runSampleTree);
}

}  // namespace app
