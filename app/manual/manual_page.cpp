#include "app/manual/manual_page.h"

#include <sstream>

namespace app {
namespace {

// A text as the formatter prints it: nothing in it is a request or an escape, and a hyphen can be copied as an option.
std::string literal(const std::string& text) {
    std::string page;
    bool lineBegins = true;
    for (const char c : text) {
        if (lineBegins && (c == '.' || c == '\'')) page += "\\&";
        if (c == '\\') {
            page += "\\e";
        } else if (c == '-') {
            page += "\\-";
        } else {
            page += c;
        }
        lineBegins = c == '\n';
    }
    return page;
}

std::string bold(const std::string& text) {
    return "\\fB" + literal(text) + "\\fR";
}

std::string italic(const std::string& text) {
    return "\\fI" + literal(text) + "\\fR";
}

// Lines that the formatter leaves as they are.
std::string asItStands(const std::string& text) {
    return ".nf\n" + literal(text) + "\n.fi\n";
}

std::string titleOf(const DescribedOption& option) {
    std::string title;
    for (const std::string& name : option.names)
        title += (title.empty() ? "" : ", ") + bold(name);
    if (option.value.empty()) return title;
    return title.empty() ? italic(option.value) : title + " " + italic(option.value);
}

std::string textOf(const DescribedOption& option) {
    std::string text = literal(option.text);
    if (option.required) text += " (required)";
    if (!option.standard.empty()) text += " (default: " + literal(option.standard) + ")";
    return text;
}

std::string sectionOf(const DescribedCommand& command) {
    std::string section = ".SS " + literal(command.name) + "\n" + literal(command.text) + ".\n";
    for (const DescribedOption& option : command.options)
        section += ".TP\n" + titleOf(option) + "\n" + textOf(option) + "\n";
    if (!command.notes.empty()) section += ".PP\n" + asItStands(command.notes);
    return section;
}

}  // namespace

std::string manualPage(const ManualHead& head, const std::vector<DescribedCommand>& commands) {
    std::ostringstream page;
    page << R"(.TH CHAT\-TRANSFER 1 "" ")" << literal(head.version) << R"(" "User Commands")"
         << "\n.SH NAME\n"
         << literal(head.name) << " \\- moves the history of a chat account\n"
         << ".SH SYNOPSIS\n"
         << bold(head.name) << " " << italic("COMMAND") << " [" << italic("OPTIONS") << "]\n"
         << ".SH DESCRIPTION\n"
         << literal(head.text) << "\n"
         << ".SH COMMANDS\n";
    for (const DescribedCommand& command : commands)
        page << sectionOf(command);
    page << ".SH ENVIRONMENT\n.TP\n"
         << bold("CHAT_TRANSFER_KEY") << "\nThe key of encrypted databases and trees, when no option names one.\n"
         << ".SH NOTES\n"
         << asItStands(head.notes);
    return page.str();
}

}  // namespace app
