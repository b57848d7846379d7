#include <memory>

#include "app/account/key_source.h"
#include "app/commands/command.h"
#include "app/commands/commands.h"
#include "app/inspect/inspect_package.h"
#include "app/inspect/inspect_tree.h"

namespace app {
namespace {

struct InspectOptions {
    std::string from;
    std::string user;
    bool tree = false;
    bool json = false;
    KeyOptions key;
};

int runInspect(const InspectOptions& options, RunReport& run) {
    const TreeSource tree = findTreeSource(options.from, options.user, options.tree);
    if (!tree.root.empty()) {
        const SecretText key = findTreeKey(options.key, tree.root, KeyPurpose::unlock);
        inspectTree(tree, key.text(), options.json, run);
    } else {
        inspectPackage(findPackage(options.from, options.user), options.user, options.json, run);
    }
    return kDone;
}

constexpr const char* kFooter =
    R"(Nothing is changed, and no account is needed. A package is not encrypted. Of a tree, plain files and decrypted copies are
looked into, and with the key the encrypted files too: they are decrypted one by one into a private folder, which is
removed afterwards. Of several files of recent contacts an import takes only the last one that the system lists: all are
named then, and only its contacts are counted.

DIR can hold the package qelmsg_0 or the tree qelbackup/ID, or be the package or a plain tree itself. Where it holds both,
the package is shown; --tree asks for the tree.

Examples:
  chat-transfer inspect ~/backup --user 1000000000000001
  chat-transfer inspect ~/backup/qelmsg_0 --user 1000000000000001 --json
  chat-transfer inspect ~/backup --user 1000000000000001 --tree --key-file ~/.chat-key)";

}  // namespace

void addInspectCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<InspectOptions>();
    CLI::App* command = program.add_subcommand("inspect", "Show what a backup package or a tree holds");
    command->add_option("DIR", options->from, "Folder that holds the package or the tree, see below")->required();
    addUserOption(*command, options->user);
    command->add_flag("--tree", options->tree, "Look into a tree, also where there is a package");
    command->add_flag("--json", options->json, "Print JSON instead of tables; ids are texts, since they may pass 2^53");
    addKeyOptions(*command, options->key);
    command->footer(kFooter);
    setJob(*command, job, std::move(options), runInspect);
}

}  // namespace app
