// What the command line says of itself, without the parser: the one source of the manual page and of the completions,
// and the same that --help prints.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace app {

struct DescribedOption {
    std::vector<std::string> names;  ///< "--from", "-h"; empty for a positional argument
    std::string value;               ///< what it takes, such as "DIR" or "days|packed"; empty for a flag
    std::string text;
    std::string standard;  ///< the value that counts when none is given; empty for none
    bool required = false;

    /// The values that can be chosen from, when `value` lists them: "days" and "packed" of "days|packed".
    [[nodiscard]] std::vector<std::string> choices() const;
};

struct DescribedCommand {
    std::string name;
    std::string text;
    std::vector<DescribedOption> options;  ///< hidden ones are left out
    std::string notes;                     ///< what stands below the options, examples included
};

/// The subcommands of a program, in the order of its help.
[[nodiscard]] std::vector<DescribedCommand> describe(const CLI::App& program);

}  // namespace app
