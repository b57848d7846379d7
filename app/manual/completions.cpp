#include "app/manual/completions.h"

#include <algorithm>
#include <sstream>

namespace app {
namespace {

std::string joined(const std::vector<std::string>& words, const char* separator) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : separator) + word;
    return text;
}

// A text in single quotes, as all three shells read it.
std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text)
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + "'";
}

std::vector<std::string> namesOf(const std::vector<DescribedCommand>& commands) {
    std::vector<std::string> names;
    names.reserve(commands.size());
    for (const DescribedCommand& command : commands)
        names.push_back(command.name);
    return names;
}

std::vector<std::string> optionNamesOf(const DescribedCommand& command) {
    std::vector<std::string> names;
    for (const DescribedOption& option : command.options)
        names.insert(names.end(), option.names.begin(), option.names.end());
    return names;
}

bool isFolder(const DescribedOption& option) {
    return option.value == "DIR";
}

// --- bash ---

// What compgen offers for the value of an option; nothing where only the user can know.
std::string bashValues(const DescribedOption& option) {
    if (isFolder(option)) return "-d";
    if (option.value == "FILE") return "-f";
    return option.choices().empty() ? "" : "-W " + quoted(joined(option.choices(), " "));
}

std::string bashOptionCase(const DescribedCommand& command) {
    std::string text;
    for (const DescribedOption& option : command.options) {
        if (option.names.empty() || option.value.empty()) continue;
        text += "            " + joined(option.names, "|") + ") values=" + quoted(bashValues(option)) + "; return ;;\n";
    }
    return text;
}

bool takesFolder(const DescribedCommand& command) {
    return std::any_of(command.options.begin(), command.options.end(),
                       [](const DescribedOption& option) { return option.names.empty() && isFolder(option); });
}

// --- zsh ---

// A text inside "[...]" of a specification of _arguments.
std::string zshText(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == ':' || c == '\\') result += '\\';
        result += c;
    }
    return result;
}

std::string zshAction(const DescribedOption& option) {
    if (isFolder(option)) return "_files -/";
    if (option.value == "FILE") return "_files";
    return option.choices().empty() ? " " : "(" + joined(option.choices(), " ") + ")";
}

std::string zshArguments(const DescribedCommand& command) {
    std::ostringstream text;
    const char* const nextLine = " \\\n                ";
    for (const DescribedOption& option : command.options) {
        const std::string value = option.value.empty() ? "" : ":" + option.value + ":" + zshAction(option);
        const std::string rest = "[" + zshText(option.text) + "]" + value;
        if (option.names.empty()) text << nextLine << quoted("1" + value);
        for (const std::string& name : option.names)
            text << nextLine << quoted(std::string(name).append(rest));
    }
    return text.str();
}

// --- fish ---

std::string fishOption(const std::string& condition, const DescribedOption& option) {
    std::string line = condition;
    for (const std::string& name : option.names)
        line += (name.compare(0, 2, "--") == 0 ? " -l " : " -s ") + name.substr(name.find_first_not_of('-'));
    if (isFolder(option)) {
        line += " -x -a '(__fish_complete_directories)'";
    } else if (option.value == "FILE") {
        line += " -r -F";
    } else if (!option.value.empty()) {
        line += " -x";
        if (!option.choices().empty()) line += " -a " + quoted(joined(option.choices(), " "));
    }
    return line + " -d " + quoted(option.text) + "\n";
}

}  // namespace

std::string bashCompletion(const std::string& program, const std::vector<DescribedCommand>& commands) {
    std::ostringstream text;
    text << "# Completion of " << program << " for bash.\n\n"
         << "# Sets `values` to what compgen offers for the value of option $2 of command $1, and `options` to its "
            "options.\n"
         << "_chat_transfer_describe() {\n"
         << "    case $1 in\n";
    for (const DescribedCommand& command : commands) {
        text << "    " << command.name << ")\n"
             << "        options=" << quoted(joined(optionNamesOf(command), " ")) << "\n"
             << "        values=" << (takesFolder(command) ? "-d" : "''") << "\n"
             << "        case $2 in\n"
             << bashOptionCase(command) << "        esac ;;\n";
    }
    text << "    esac\n}\n\n"
         << "_chat_transfer() {\n"
         << "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} options='' values=''\n"
         << "    if [ \"$COMP_CWORD\" -le 1 ]; then\n"
         << "        mapfile -t COMPREPLY < <(compgen -W "
         << quoted(joined(namesOf(commands), " ") + " --help --version") << " -- \"$word\")\n"
         << "        return\n"
         << "    fi\n"
         << "    _chat_transfer_describe \"${COMP_WORDS[1]}\" \"$before\"\n"
         << "    case $word in\n"
         << "    -*) mapfile -t COMPREPLY < <(compgen -W \"$options\" -- \"$word\") ;;\n"
         << "    *) COMPREPLY=()\n"
         << "        [ -z \"$values\" ] || mapfile -t COMPREPLY < <(eval \"compgen $values -- \\\"\\$word\\\"\") ;;\n"
         << "    esac\n}\n\n"
         << "complete -o filenames -F _chat_transfer " << program << "\n";
    return text.str();
}

std::string zshCompletion(const std::string& program, const std::vector<DescribedCommand>& commands) {
    std::ostringstream text;
    text << "#compdef " << program << "\n"
         << "# Completion of " << program << " for zsh.\n\n"
         << "_chat_transfer() {\n"
         << "    if (( CURRENT == 2 )); then\n"
         << "        local -a commands=(";
    for (const DescribedCommand& command : commands)
        text << "\n            " << quoted(command.name + ":" + zshText(command.text));
    text << ")\n"
         << "        _describe command commands\n"
         << "        return\n"
         << "    fi\n"
         << "    local command=$words[2]\n"
         << "    shift words\n"
         << "    (( CURRENT-- ))\n"
         << "    case $command in\n";
    for (const DescribedCommand& command : commands)
        text << "        " << command.name << ")\n            _arguments" << zshArguments(command) << " ;;\n";
    text << "    esac\n}\n\n_chat_transfer \"$@\"\n";
    return text.str();
}

std::string fishCompletion(const std::string& program, const std::vector<DescribedCommand>& commands) {
    std::ostringstream text;
    const std::string begin = "complete -c " + program;
    text << "# Completion of " << program << " for fish.\n\n" << begin << " -f\n";
    for (const DescribedCommand& command : commands) {
        text << begin << " -n __fish_use_subcommand -a " << command.name << " -d " << quoted(command.text) << "\n";
        const std::string condition = begin + " -n " + quoted("__fish_seen_subcommand_from " + command.name);
        for (const DescribedOption& option : command.options) {
            if (!option.names.empty()) text << fishOption(condition, option);
        }
        if (takesFolder(command)) text << condition << " -a '(__fish_complete_directories)'\n";
    }
    return text.str();
}

}  // namespace app
