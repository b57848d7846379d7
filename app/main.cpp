// The program `chat-transfer`: runs the chosen subcommand and turns what it throws into words and exit codes.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <sstream>

#include "app/failure.h"
#include "app/interruption.h"
#include "app/printable.h"
#include "app/private_process.h"
#include "app/program.h"

namespace {

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
    CLI::App program(app::kProgramDescription, app::kProgramName);
    app::Job job;
    app::addCommands(program, job);
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
    } catch (const app::Interrupted& interruption) {
        std::cout.flush();
        app::printFailure(std::cerr, interruption.words());
        return app::kInterrupted;
    } catch (const app::Failure& failure) {
        std::cout.flush();
        app::printFailure(std::cerr, failure.words());
    } catch (const std::exception& error) {
        std::cerr << "chat-transfer: " << app::printable(error.what()) << ".\n";
    }
    return app::kFailed;
}
