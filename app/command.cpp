#include "app/command.h"

#include <limits>

#include "app/calendar.h"

namespace app {
namespace {

// The folder of the user stands inside a path of at most 259 bytes.
constexpr std::size_t kLongestUser = 200;

constexpr const char* kDefaultPackageVersion = "1.0";

std::string faultOfUser(const std::string& user) {
    if (user.empty() || user == "." || user == "..")
        return "needs the name of the user's folder, usually the user's id";
    if (user.find('/') != std::string::npos) return "is one folder name: it cannot hold a \"/\"";
    return user.size() > kLongestUser ? "is longer than 200 bytes" : "";
}

// The number that the `count` digits of `text` from `first` make; -1 when they are no digits.
int numberAt(const std::string& text, std::size_t first, std::size_t count) {
    int number = 0;
    for (std::size_t i = first; i < first + count; ++i) {
        if (text[i] < '0' || text[i] > '9') return -1;
        number = number * 10 + (text[i] - '0');
    }
    return number;
}

struct Date {
    int year;
    int month;
    int day;
};

Date parsedDate(const std::string& text) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') return {-1, -1, -1};
    return {numberAt(text, 0, 4), numberAt(text, 5, 2), numberAt(text, 8, 2)};
}

std::string faultOfDate(const std::string& text) {
    const Date date = parsedDate(text);
    const bool exists = date.year >= 0 && date.month >= 1 && date.month <= 12 && date.day >= 1 &&
                        date.day <= daysOfMonth(date.year, date.month);
    return exists ? "" : "is no day of the calendar written as YYYY-MM-DD, such as 2024-03-07";
}

std::string refuseKey(const std::string& /*key*/) {
    return "a key is never an argument, since everybody on this machine could read it; use --key-file FILE, the "
           "environment "
           "variable CHAT_TRANSFER_KEY or --ask-key";
}

int orBeforeAll(const std::string& text, int Date::*part) {
    return text.empty() ? std::numeric_limits<int>::min() : parsedDate(text).*part;
}

}  // namespace

void addFolderOption(CLI::App& command, const std::string& name, std::string& folder, const std::string& help) {
    const auto faultOf = [](const std::string& text) { return text.empty() ? "needs the name of a folder" : ""; };
    command.add_option(name, folder, help)->type_name("DIR")->check(faultOf)->required();
}

void addAccountOption(CLI::App& command, std::string& account) {
    addFolderOption(command, "--account", account,
                    "Folder of the account: databases in db/, attachments in audio/, image/, file/");
}

void addPackageOption(CLI::App& command, std::string& from) {
    addFolderOption(command, "--from", from, "Folder that holds the package qelmsg_0, or qelmsg_0 itself");
}

void addUserOption(CLI::App& command, std::string& user) {
    command.add_option("--user", user, "The user's id: the name of the user's folder inside a package")
        ->type_name("ID")
        ->check(faultOfUser)
        ->required();
}

void addPackageVersionOption(CLI::App& command, std::string& version) {
    version = kDefaultPackageVersion;
    command.add_option("--package-version", version, "Version text that a package is marked with and must have")
        ->type_name("TEXT")
        ->capture_default_str();
}

void addKeyOptions(CLI::App& command, KeyOptions& key) {
    command.add_option("--key-file", key.keyFile, "File whose one line is the key of the encrypted databases")
        ->type_name("FILE");
    command.add_flag("--ask-key", key.askKey, "Ask for the key on the terminal, without echo");
    command
        .add_option_function<std::string>(
            "-k,--key,--password,--passphrase", [](const std::string&) {}, "")
        ->check(refuseKey)
        ->group("");
}

int SinceDay::year() const {
    return orBeforeAll(text, &Date::year);
}
int SinceDay::month() const {
    return orBeforeAll(text, &Date::month);
}
int SinceDay::day() const {
    return orBeforeAll(text, &Date::day);
}

void addSinceOption(CLI::App& command, SinceDay& since, const std::string& help) {
    command.add_option("--since", since.text, help)->type_name("YYYY-MM-DD")->check(faultOfDate);
}

}  // namespace app
