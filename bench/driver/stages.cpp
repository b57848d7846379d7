#include "bench/driver/stages.h"

#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "bench/driver/comparison.h"
#include "bench/names.h"

namespace fs = std::filesystem;

namespace bench {
namespace {

std::vector<std::string> with(std::vector<std::string> arguments, const std::vector<std::string>& more) {
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

// An export of the project into a fresh folder.
Contender exportBy(const Workshop& workshop, const std::string& name, const std::string& account, bool keyed = false) {
    return {name, [&workshop, name, account, keyed] {
                std::vector<std::string> arguments = {"export", account, workshop.freshFolder("out-" + name)};
                if (keyed) arguments.emplace_back("keyed");
                return workshop.own("transfer-bench", arguments);
            }};
}

Contender importBy(const Workshop& workshop, const std::string& name, const std::string& package, bool keyed = false) {
    return {name, [&workshop, name, package, keyed] {
                std::vector<std::string> arguments = {"import", workshop.freshAccount("into-" + name), package};
                if (keyed) arguments.emplace_back("keyed");
                return workshop.own("transfer-bench", arguments);
            }};
}

Contender openBy(const Workshop& workshop, const std::string& name, const std::string& account, bool keyed) {
    return {name, [&workshop, account, keyed] {
                return workshop.own("transfer-bench", keyed ? std::vector<std::string>{"open", account, "keyed"}
                                                            : std::vector<std::string>{"open", account});
            }};
}

// The copy of a folder by the system: a floor, and what the contenders behind it work on.
Contender copyOf(const std::string& folder, const std::string& copied) {
    return {"copy", [folder, copied]() -> Command {
                fs::remove_all(copied);
                return {{"cp", "-r", folder, copied}, "", ""};
            }};
}

std::string packageOf(const Workshop& workshop, const std::string& account, const std::string& name) {
    std::string package = workshop.freshFolder(name);
    workshop.run(workshop.own("floor-export", {"days", account, package}));
    return package;
}

// Plain and encrypted databases of the same account, exported and imported in turns.
void raceKeyedSize(Workshop& workshop, const std::string& prefix, const std::vector<std::string>& account, bool open) {
    const std::string plain = workshop.account("plain", account);
    const std::string keyed = workshop.account("keyed", with(account, {"--keyed"}));
    const std::string package = packageOf(workshop, plain, "package");
    std::vector<Contender> contenders = {
        exportBy(workshop, "export", plain), exportBy(workshop, "export-keyed", keyed, true),
        importBy(workshop, "import", package), importBy(workshop, "import-keyed", package, true)};
    if (open) {
        contenders.push_back(openBy(workshop, "open", plain, false));
        contenders.push_back(openBy(workshop, "open-keyed", keyed, true));
    }
    race(prefix, contenders, workshop.settings().rounds, workshop.results(),
         [&workshop] { requireSameFiles(workshop.at("out-export"), workshop.at("out-export-keyed")); });
    workshop.clear();
}

void raceWalk(Workshop& workshop) {
    const int files = workshop.settings().treeFiles;
    const std::string tree = workshop.freshFolder("tree");
    workshop.run(workshop.own("bench-data", {"encrypted-tree", tree, "--files", std::to_string(files), "--bytes",
                                             std::to_string(workshop.settings().fileBytes)}));
    const std::string copied = workshop.at("tree-copy");
    // The copy that is measured is the tree that the walk then uses up.
    race("walk",
         {copyOf(tree, copied),
          {"project",
           [&] {
               return workshop.own("transfer-bench", {"walk", workshop.freshAccount("a"), copied});
           }}},
         workshop.settings().rounds, workshop.results(),
         [&] { requireSameCount(files, countFiles(copied, ".mg.decrypt"), "decrypted files"); });
    workshop.clear();
}

int smallerTableSize(const Workshop& workshop) {
    const std::vector<int>& sizes = workshop.settings().sizes;
    return sizes.at(sizes.size() >= 2 ? sizes.size() - 2 : 0);
}

void raceTreeMessages(Workshop& workshop) {
    const std::string account = workshop.account("account", sizedAccount(smallerTableSize(workshop)));
    const std::string package = packageOf(workshop, account, "package");
    const std::string tree = workshop.freshFolder("tree");
    workshop.run(workshop.own("bench-data", {"message-tree", account, tree}));
    race("tree-messages",
         {importBy(workshop, "package", package),
          {"tree",
           [&] {
               return workshop.own("transfer-bench", {"import-tree", workshop.freshAccount("into-tree"), tree});
           }}},
         workshop.settings().rounds, workshop.results(), [&workshop] {
             requireSameCount(countMessages(workshop.at("into-package/db/imsg.db")),
                              countMessages(workshop.at("into-tree/db/imsg.db")), "messages of the tree");
         });
    workshop.clear();
}

DiskWrites countedImport(const Workshop& workshop, const std::string& account, const std::string& package) {
    Command command = workshop.own("transfer-bench", {"import-counted", account, package});
    std::istringstream line(firstLine(command, workshop.at("counted")));
    DiskWrites writes;
    if (!(line >> writes.syncs >> writes.bytes)) throw std::runtime_error("the counted import failed");
    return writes;
}

constexpr int kCountedMessages = 50;

// A package of the newer or older half of the messages of `conversations` conversations.
std::string halfPackage(const Workshop& workshop, int conversations, bool newer) {
    const std::string name = std::to_string(conversations) + (newer ? "-newer" : "-older");
    std::vector<std::string> plan = {"--conversations", std::to_string(conversations), "--messages",
                                     std::to_string(newer ? 2 * kCountedMessages : kCountedMessages)};
    if (newer) plan = with(plan, {"--first", std::to_string(kCountedMessages)});
    return packageOf(workshop, workshop.account("account-" + name, plan), "package-" + name);
}

struct ThreeImports {
    DiskWrites created;
    DiskWrites extended;
    DiskWrites repeated;
};

ThreeImports importThrice(const Workshop& workshop, int conversations) {
    const std::string older = halfPackage(workshop, conversations, false);
    const std::string newer = halfPackage(workshop, conversations, true);
    const std::string into = workshop.freshAccount("into");
    ThreeImports writes;
    writes.created = countedImport(workshop, into, older);
    writes.extended = countedImport(workshop, into, newer);
    writes.repeated = countedImport(workshop, into, newer);
    return writes;
}

}  // namespace

void raceOneDay(Workshop& workshop) {
    std::vector<Contender> contenders;
    for (const int messages : workshop.settings().oneDaySizes) {
        const std::string size = std::to_string(messages);
        const std::string account = workshop.account("account-" + size, with(sizedAccount(messages), {"--days", "1"}));
        contenders.push_back(exportBy(workshop, size, account));
    }
    race("one-day", contenders, workshop.settings().rounds, workshop.results());
    workshop.clear();
}

void raceManyConversations(Workshop& workshop) {
    const std::string conversations = std::to_string(workshop.settings().manyConversations);
    const std::string account =
        workshop.account("account", {"--conversations", conversations, "--messages", std::to_string(kCountedMessages)});
    const std::string package = packageOf(workshop, account, "package");
    race("many",
         {{"floor",
           [&] {
               return workshop.own("floor-import", {package, workshop.freshAccount("into-floor")});
           }},
          importBy(workshop, "project", package)},
         workshop.settings().rounds, workshop.results(), [&workshop] {
             requireSameRows(workshop.at("into-floor/db/imsg.db"), workshop.at("into-project/db/imsg.db"));
         });
    workshop.clear();
}

void raceKeyed(Workshop& workshop) {
    for (const int messages : {smallerTableSize(workshop), workshop.settings().sizes.back()})
        raceKeyedSize(workshop, "keyed " + std::to_string(messages), sizedAccount(messages), false);
    // So small that the key derivations are nearly all that differs.
    raceKeyedSize(workshop, "keyed-small", {"--conversations", "1", "--messages", "10"}, true);
}

void raceTree(Workshop& workshop) {
    raceWalk(workshop);
    raceTreeMessages(workshop);
}

void raceTreeImport(Workshop& workshop) {
    const std::string account = workshop.account("account", sizedAccount(workshop.settings().treeMessages()));
    const std::string tree = workshop.freshFolder("tree");
    workshop.run(workshop.own("bench-data", {"message-tree", account, tree, "--encrypted", "--per-file",
                                             std::to_string(Settings::kTreeMessagesPerFile)}));
    const std::string copied = workshop.at("tree-copy");
    const auto onCopy = [&](const char* operation, const char* into, const std::vector<std::string>& more = {}) {
        return workshop.own("transfer-bench", with({operation, workshop.freshAccount(into), copied}, more));
    };
    race("tree-import",
         {copyOf(tree, copied),
          {"walk", [&] { return onCopy("walk", "a"); }},
          {"read", [&] { return onCopy("read-tree", "a"); }},
          {"insert",
           [&] {
               return workshop.own("floor-insert", {account, workshop.freshAccount("into-floor")});
           }},
          {"import",
           [&] {
               // As for the walk alone: nothing is decrypted yet.
               fs::remove_all(copied);
               fs::copy(tree, copied, fs::copy_options::recursive);
               return onCopy("import-tree", "into-tree", {"keyed"});
           }}},
         workshop.settings().rounds, workshop.results(), [&] {
             requireSameCount(countMessages(workshop.at("into-floor/db/imsg.db"), kKeyText),
                              countMessages(workshop.at("into-tree/db/imsg.db"), kKeyText), "messages of the tree");
         });
    workshop.clear();
}

void raceAttachments(Workshop& workshop) {
    const std::string account = workshop.account(
        "account", {"--conversations", "10", "--messages", std::to_string(workshop.settings().attachments / 10),
                    "--attachments", "100", "--file-bytes", std::to_string(workshop.settings().fileBytes)});
    const std::string copied = workshop.at("copied");
    race("attachments", {copyOf(account + "/file", copied), exportBy(workshop, "project", account)},
         workshop.settings().rounds, workshop.results(), [&] {
             requireSameCount(countFiles(copied, ".pdf"), countFiles(workshop.at("out-project"), ".pdf"),
                              "attachments");
         });
    workshop.clear();
}

ImportWrites countImportWrites(const Workshop& workshop) {
    constexpr int kFew = 20;
    constexpr int kMany = 60;
    const ThreeImports few = importThrice(workshop, kFew);
    const ThreeImports many = importThrice(workshop, kMany);
    workshop.clear();
    const auto each = [](long long larger, long long smaller) {
        return static_cast<double>(larger - smaller) / (kMany - kFew);
    };
    return {each(many.created.syncs, few.created.syncs),   each(many.created.bytes, few.created.bytes),
            each(many.extended.syncs, few.extended.syncs), each(many.extended.bytes, few.extended.bytes),
            each(many.repeated.syncs, few.repeated.syncs), each(many.repeated.bytes, few.repeated.bytes)};
}

}  // namespace bench
