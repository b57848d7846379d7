// Writes the manual page or the completion of a shell from the command line itself. Part of the build only.
#include <CLI/CLI.hpp>
#include <iostream>

#include "app/base/program_name.h"
#include "app/commands/program.h"
#include "app/manual/completions.h"
#include "app/manual/manual_page.h"

namespace {

std::string documentOf(const std::string& kind) {
    CLI::App program(app::kProgramDescription, app::kProgramName);
    app::Job job;
    app::addCommands(program, job);
    const std::vector<app::DescribedCommand> commands = app::describe(program);
    if (kind == "bash") return app::bashCompletion(app::kProgramName, commands);
    if (kind == "zsh") return app::zshCompletion(app::kProgramName, commands);
    if (kind == "fish") return app::fishCompletion(app::kProgramName, commands);
    if (kind == "man") {
        return app::manualPage({app::kProgramName, program.version(), app::kProgramDescription, program.get_footer()},
                               commands);
    }
    return {};
}

}  // namespace

int main(int argc, char** argv) {
    const std::string document = argc == 2 ? documentOf(argv[1]) : "";
    std::cout << document;
    if (!document.empty()) return 0;
    std::cerr << "usage: chat-transfer-manual man|bash|zsh|fish\n";
    return 2;
}
