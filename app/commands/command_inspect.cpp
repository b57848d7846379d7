#include "app/commands/command_inspect.h"

#include <iostream>
#include <memory>

#include "app/base/printable.h"
#include "app/base/units.h"
#include "app/commands/inspect_tree.h"
#include "app/package/conversation_table.h"
#include "app/package/package_summary.h"
#include "app/tree/tree_conversion.h"

namespace app {
namespace {

struct InspectOptions {
    std::string from;
    std::string user;
    bool tree = false;
    bool json = false;
    KeyOptions key;
};

void addTotals(Summary& table, const PackageSummary& summary) {
    const PackageFacts& facts = summary.facts;
    table.add("files.messages", "Message files", facts.messageFiles);
    addMessageTotals(table, facts.versions, summary);
    if (facts.hasContacts) {
        table.add("recentContacts.read", "Recent contacts", static_cast<long long>(facts.contacts.size()));
    } else {
        table.add("recentContacts.file", "Recent contacts", std::string("no file"));
    }
    addAttachmentTotals(table, summary.attachments);
    table.addSize("bytes", "Size", summary.bytes);
}

void printDamage(const PackageFacts& facts) {
    if (!facts.unreadable.empty()) std::cout << "\nFiles that cannot be read:\n";
    for (const std::string& path : facts.unreadable)
        std::cout << "  " << printable(path) << '\n';
    if (facts.filesBehindGap == 0) return;
    std::cout << "\nThe numbering has a gap after " << counted(facts.messageFiles, "file", "files")
              << ": no import reads the " << grouped(facts.filesBehindGap) << " behind it.\n";
}

int runInspect(const InspectOptions& options, RunReport& run) {
    const TreeSource tree = findTreeSource(options.from, options.user, options.tree);
    if (!tree.root.empty()) {
        const SecretText key = findTreeKey(options.key, tree.root, KeyPurpose::unlock);
        return inspectTree(tree, key.text(), options.json, run);
    }
    const PackagePlace place = findPackage(options.from, options.user);
    const PackageSummary summary = summarise(place);
    addTotals(run.summary, summary);
    if (options.json) {
        std::cout << jsonOf(summary) << '\n';
        return kDone;
    }
    run.printSummary("Package " + printable(place.parent) + "/qelmsg_0 of user " + printable(options.user));
    printConversations(summary, std::cout);
    printDamage(summary.facts);
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
