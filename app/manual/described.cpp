#include "app/manual/described.h"

#include <CLI/CLI.hpp>
#include <sstream>

namespace app {
namespace {

DescribedOption describeOption(const CLI::Option& option) {
    DescribedOption described;
    for (const std::string& name : option.get_snames())
        described.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        described.names.push_back("--" + name);
    const bool positional = described.names.empty();
    if (positional) {
        described.value = option.get_name();
    } else if (option.get_items_expected_max() > 0) {
        described.value = option.get_type_name();
    }
    described.text = option.get_description();
    described.standard = option.get_default_str();
    described.required = option.get_required();
    return described;
}

DescribedCommand describeCommand(const CLI::App& command) {
    DescribedCommand described;
    described.name = command.get_name();
    described.text = command.get_description();
    described.notes = command.get_footer();
    const auto shown = [](const CLI::Option* option) { return !option->get_group().empty(); };
    for (const CLI::Option* option : command.get_options(shown))
        described.options.push_back(describeOption(*option));
    return described;
}

}  // namespace

std::vector<std::string> DescribedOption::choices() const {
    std::vector<std::string> words;
    if (value.find('|') == std::string::npos) return words;
    std::istringstream stream(value);
    for (std::string word; std::getline(stream, word, '|');)
        words.push_back(word);
    return words;
}

std::vector<DescribedCommand> describe(const CLI::App& program) {
    std::vector<DescribedCommand> commands;
    const auto every = [](const CLI::App* /*command*/) { return true; };
    for (const CLI::App* command : program.get_subcommands(every))
        commands.push_back(describeCommand(*command));
    return commands;
}

}  // namespace app
