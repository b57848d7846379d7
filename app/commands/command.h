// What the subcommands have in common: how they are wired, and the options that several of them take.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>

#include "app/account/key_options.h"
#include "app/base/exit_codes.h"
#include "app/commands/since_day.h"
#include "app/report/run_report.h"

namespace app {

/// What the chosen subcommand does; set while the command line is parsed, run afterwards.
struct Job {
    std::string command;
    std::string reportFile;  ///< empty: no report is wanted
    /// Returns an exit code, or throws Failure. Empty when no subcommand was chosen.
    std::function<int(RunReport&)> run;
};

/// --report, which every subcommand has.
void addReportOption(CLI::App& command, std::string& file);

/// Gives the subcommand its options and its job. `run` gets the filled options.
template <class Options>
void setJob(CLI::App& command, Job& job, std::shared_ptr<Options> options, int (*run)(const Options&, RunReport&)) {
    addReportOption(command, job.reportFile);
    command.callback([&job, run, name = command.get_name(), options = std::move(options)] {
        job.command = name;
        job.run = [run, options](RunReport& report) { return run(*options, report); };
    });
}

/// A required option that names a folder, such as "--to".
void addFolderOption(CLI::App& command, const std::string& name, std::string& folder, const std::string& help);

void addAccountOption(CLI::App& command, std::string& account);
void addPackageOption(CLI::App& command, std::string& from);
/// --from for a folder that holds a tree.
void addTreeOption(CLI::App& command, std::string& from);
void addUserOption(CLI::App& command, std::string& user);
void addPackageVersionOption(CLI::App& command, std::string& version);

/// --key-file and --ask-key. An attempt to give the key itself as an argument is refused without repeating it.
void addKeyOptions(CLI::App& command, KeyOptions& key);

void addSinceOption(CLI::App& command, SinceDay& since, const std::string& help);

}  // namespace app
