#include "app/commands/command.h"

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

std::string refuseKey(const std::string& /*key*/) {
    return "a key is never an argument, since everybody on this machine could read it; use --key-file FILE, the "
           "environment variable CHAT_TRANSFER_KEY or --ask-key";
}

}  // namespace

void addReportOption(CLI::App& command, std::string& file) {
    const auto faultOf = [](const std::string& text) { return text.empty() ? "needs the name of a file" : ""; };
    command.add_option("--report", file, "Write what happened into FILE too, as JSON, also when the command fails")
        ->type_name("FILE")
        ->check(faultOf);
}

void addFolderOption(CLI::App& command, const std::string& name, std::string& folder, const std::string& help) {
    const auto faultOf = [](const std::string& text) { return text.empty() ? "needs the name of a folder" : ""; };
    command.add_option(name, folder, help)->type_name("DIR")->check(faultOf)->required();
}

void addAccountOption(CLI::App& command, std::string& account) {
    addFolderOption(command, "--account", account,
                    "Folder of the account: databases in db/, attachments in audio/, image/, file/, video/");
}

void addPackageOption(CLI::App& command, std::string& from) {
    addFolderOption(command, "--from", from, "Folder that holds the package qelmsg_0, or qelmsg_0 itself");
}

void addTreeOption(CLI::App& command, std::string& from) {
    addFolderOption(command, "--from", from, "Folder that holds the tree as qelbackup/<ID>, or qelbackup itself");
}

void addUserOption(CLI::App& command, std::string& user) {
    command.add_option("--user", user, "The user's id: the name of the user's folder inside a package or in qelbackup")
        ->type_name("ID")
        ->check(faultOfUser)
        ->required();
}

void addPackageVersionOption(CLI::App& command, std::string& version) {
    version = kDefaultPackageVersion;
    command
        .add_option("--package-version", version, "Version text that a package or tree is marked with and must have")
        ->type_name("TEXT")
        ->capture_default_str();
}

void addKeyOptions(CLI::App& command, KeyOptions& key) {
    command.add_option("--key-file", key.keyFile, "File whose one line is the key of encrypted databases and trees")
        ->type_name("FILE");
    command.add_flag("--ask-key", key.askKey, "Ask for the key on the terminal, without echo");
    command
        .add_option_function<std::string>(
            "-k,--key,--password,--passphrase", [](const std::string&) {}, "")
        ->check(refuseKey)
        ->group("");
}

void addSinceOption(CLI::App& command, SinceDay& since, const std::string& help) {
    command.add_option("--since", since.text, help)->type_name("YYYY-MM-DD")->check(faultOfDay);
}

}  // namespace app
