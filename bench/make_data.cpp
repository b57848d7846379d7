// bench-data: makes the accounts and trees that the benchmarks run on. `bench-data --help` lists the arguments.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

#include "bench/account.h"
#include "bench/tree.h"

namespace bench {
namespace {

void addAccount(CLI::App& app, AccountPlan& plan, std::string& folder) {
    CLI::App* command = app.add_subcommand("account", "An account with messages");
    command->add_option("folder", folder, "New folder of the account")->required();
    command->add_option("--conversations", plan.conversations, "Number of conversations")->required();
    command->add_option("--messages", plan.messages, "Messages per conversation")->required();
    command->add_option("--days", plan.days, "Days over which they are spread")->capture_default_str();
    command->add_option("--attachments", plan.attachmentsPerHundred, "Messages in a hundred that name attachments")
        ->capture_default_str();
    command->add_option("--file-bytes", plan.attachmentBytes, "Make real attachment files of this size");
    command->add_option("--first", plan.firstMessage, "Leave out the messages before this number");
    command->add_flag("--keyed", plan.keyed, "Encrypt the databases");
    command->callback(
        [&plan, &folder] { std::printf("%.1f bytes per message body on average\n", makeAccount(plan, folder)); });
}

void addMessageTree(CLI::App& app, std::string& account, MessageTreePlan& plan, std::string& folder) {
    CLI::App* messages = app.add_subcommand("message-tree", "A tree with an account's messages, decrypted");
    messages->add_option("account", account, "The account")->required();
    messages->add_option("folder", folder, "Folder that gets the tree")->required();
    messages->add_option("--per-file", plan.perFile, "Messages in a file at most (default: a conversation's)");
    messages->add_flag("--encrypted", plan.encrypted, "Encrypt the files");
    messages->callback([&] { makeMessageTree(account, plan, folder); });
}

void addEncryptedTree(CLI::App& app, std::string& folder, int& files, int& bytes) {
    CLI::App* encrypted = app.add_subcommand("encrypted-tree", "A tree of encrypted files");
    encrypted->add_option("folder", folder, "Folder that gets the tree")->required();
    encrypted->add_option("--files", files, "Number of files")->required();
    encrypted->add_option("--bytes", bytes, "Size of each")->required();
    encrypted->callback([&] { makeEncryptedTree(files, bytes, folder); });
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
    CLI::App app("Makes accounts and trees for the benchmarks");
    app.require_subcommand(1);
    bench::AccountPlan plan;
    bench::MessageTreePlan treePlan;
    std::string account;
    std::string folder;
    int files = 0;
    int bytes = 0;
    bench::addAccount(app, plan, folder);
    bench::addMessageTree(app, account, treePlan, folder);
    bench::addEncryptedTree(app, folder, files, bytes);
    try {
        app.parse(argc, argv);
        return 0;
    } catch (const CLI::ParseError& error) {
        return app.exit(error);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench-data: %s\n", error.what());
        return 1;
    }
}
