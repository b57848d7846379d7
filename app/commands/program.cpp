#include "app/commands/program.h"

#include <memory>
#include <utility>

#include "app/base/program_name.h"
#include "app/commands/commands.h"

namespace app {
namespace {

constexpr const char* kFooter = R"(Try it:
  chat-transfer sample --account demo --user 1000000000000001
  chat-transfer export --account demo --user 1000000000000001 --to backup
  chat-transfer inspect backup --user 1000000000000001
  chat-transfer import --from backup --account demo2 --user 1000000000000001
  chat-transfer verify --from backup --account demo2 --user 1000000000000001
  chat-transfer view --from backup --user 1000000000000001 --to pages

The same with a tree; its key is asked for, and becomes the key of the new account:
  chat-transfer sample-tree --to plain-tree --user 1000000000000001
  chat-transfer encrypt-tree --from plain-tree --to trees --user 1000000000000001 --ask-key
  chat-transfer import-tree --from trees --account demo3 --user 1000000000000001 --ask-key
  chat-transfer verify --from plain-tree --account demo3 --user 1000000000000001 --ask-key

chat-transfer COMMAND --help explains a command.
Exit codes: 0 done, 1 the operation failed, 2 wrong usage, 130 interrupted.)";

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

}  // namespace

void addCommands(CLI::App& program, Job& job) {
    program.require_subcommand(0, 1);
    program.formatter(std::make_shared<HelpText>());
    program.set_version_flag("--version", std::string(kProgramName) + " " + programVersion(),
                             "Print the version and exit");
    program.footer(kFooter);
    addSampleCommand(program, job);
    addExportCommand(program, job);
    addImportCommand(program, job);
    addInspectCommand(program, job);
    addVerifyCommand(program, job);
    addViewCommand(program, job);
    addSampleTreeCommand(program, job);
    addEncryptTreeCommand(program, job);
    addImportTreeCommand(program, job);
    addDecryptTreeCommand(program, job);
}

}  // namespace app
