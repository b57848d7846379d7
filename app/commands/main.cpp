// The program `chat-transfer`: parses the command line and runs the chosen subcommand.
#include <CLI/CLI.hpp>
#include <iostream>
#include <sstream>

#include "app/account/private_process.h"
#include "app/base/printable.h"
#include "app/base/program_name.h"
#include "app/commands/program.h"
#include "app/commands/run_job.h"

namespace {

// What the parser has to say goes to the terminal with the user's own words in it.
int reportParsing(const CLI::App& program, const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
        std::ostringstream help;
        std::ostringstream none;
        program.exit(error, help, none);
        std::cout << app::printableLines(help.str());
        app::requirePrinted();
        return app::kDone;
    }
    // The name of a hidden option is left out, but not the colon behind it.
    std::string complaint = error.what();
    if (complaint.compare(0, 2, ": ") == 0) complaint.erase(0, 2);
    std::cerr << "chat-transfer: " << app::printable(complaint) << ".\nRun it with --help for more information.\n";
    return app::kWrongUsage;
}

int run(int argc, char** argv) {
    CLI::App program(app::kProgramDescription, app::kProgramName);
    app::Job job;
    app::addCommands(program, job);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return reportParsing(program, error);
    }
    if (job.run) return app::runJob(job);
    std::cerr << program.help();
    return app::kWrongUsage;
}

}  // namespace

int main(int argc, char** argv) {
    app::keepPrivate();
    return app::exitCodeOf([&] { return run(argc, argv); });
}
