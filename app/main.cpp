// The program `chat-transfer`: wires the subcommands together and turns what they throw into words and exit codes.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <memory>
#include <sstream>
#include <utility>

#include "app/command.h"
#include "app/command_decrypt_tree.h"
#include "app/command_encrypt_tree.h"
#include "app/command_export.h"
#include "app/command_import.h"
#include "app/command_import_tree.h"
#include "app/command_inspect.h"
#include "app/command_sample.h"
#include "app/command_sample_tree.h"
#include "app/command_verify.h"
#include "app/failure.h"
#include "app/printable.h"
#include "app/private_process.h"

namespace {

constexpr const char* kDescription =
    "chat-transfer moves a chat account's history between its databases and backup packages, and out of the encrypted "
    "trees of other clients.";

constexpr const char* kFooter = R"(Try it:
  chat-transfer sample --account demo --user 1000000000000001
  chat-transfer export --account demo --user 1000000000000001 --to backup
  chat-transfer inspect backup --user 1000000000000001
  chat-transfer import --from backup --account demo2 --user 1000000000000001
  chat-transfer verify --from backup --account demo2 --user 1000000000000001

The same with a tree; its key is asked for, and becomes the key of the new account:
  chat-transfer sample-tree --to plain-tree --user 1000000000000001
  chat-transfer encrypt-tree --from plain-tree --to trees --user 1000000000000001 --ask-key
  chat-transfer import-tree --from trees --account demo3 --user 1000000000000001 --ask-key
  chat-transfer verify --from plain-tree --account demo3 --user 1000000000000001 --ask-key

chat-transfer COMMAND --help explains a command.
Exit codes: 0 done, 1 the operation failed, 2 wrong usage.)";

// The parser's own text without the second empty line that hidden options leave behind.
class HelpText : public CLI::Formatter {
public:
    std::string make_help(const CLI::App* command, std::string name, CLI::AppFormatMode mode) const override {
        std::string text = CLI::Formatter::make_help(command, std::move(name), mode);
        for (std::size_t found = text.find(kTwoEmptyLines); found != std::string::npos;
             found = text.find(kTwoEmptyLines, found))
            text.erase(found, 1);
        return text;
    }

private:
    static constexpr const char* kTwoEmptyLines = "\n\n\n";
};

void addCommands(CLI::App& program, app::Job& job) {
    program.require_subcommand(0, 1);
    program.formatter(std::make_shared<HelpText>());
    program.set_version_flag("--version", "chat-transfer " CHAT_TRANSFER_VERSION, "Print the version and exit");
    program.footer(kFooter);
    app::addSampleCommand(program, job);
    app::addExportCommand(program, job);
    app::addImportCommand(program, job);
    app::addInspectCommand(program, job);
    app::addVerifyCommand(program, job);
    app::addSampleTreeCommand(program, job);
    app::addEncryptTreeCommand(program, job);
    app::addImportTreeCommand(program, job);
    app::addDecryptTreeCommand(program, job);
}

// What the parser has to say goes to the terminal with the user's own words in it.
int reportParsing(const CLI::App& program, const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
        std::ostringstream help;
        std::ostringstream none;
        program.exit(error, help, none);
        std::cout << app::printableLines(help.str());
        return app::kDone;
    }
    // The name of a hidden option is left out, but not the colon behind it.
    std::string complaint = error.what();
    if (complaint.compare(0, 2, ": ") == 0) complaint.erase(0, 2);
    std::cerr << "chat-transfer: " << app::printable(complaint) << ".\nRun it with --help for more information.\n";
    return app::kWrongUsage;
}

int run(int argc, char** argv) {
    CLI::App program(kDescription, "chat-transfer");
    app::Job job;
    addCommands(program, job);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return reportParsing(program, error);
    }
    if (job) return job();
    std::cerr << program.help();
    return app::kWrongUsage;
}

// Results that nobody received are no results: the disk behind the standard output may be full.
int flushed(int code) {
    std::cout.flush();
    if (std::cout.good()) return code;
    std::cerr << "chat-transfer: the results could not be printed.\n";
    return app::kFailed;
}

}  // namespace

int main(int argc, char** argv) {
    app::keepPrivate();
    try {
        return flushed(run(argc, argv));
    } catch (const app::Failure& failure) {
        std::cout.flush();
        app::printFailure(std::cerr, failure.words());
    } catch (const std::exception& error) {
        std::cerr << "chat-transfer: " << app::printable(error.what()) << ".\n";
    }
    return app::kFailed;
}
