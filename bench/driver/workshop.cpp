#include "bench/driver/workshop.h"

#include <filesystem>
#include <utility>

#include "bench/account.h"

namespace fs = std::filesystem;

namespace bench {

Workshop::Workshop(std::string folder, Programs programs, Settings settings)
    : folder_(std::move(folder)), programs_(std::move(programs)), settings_(std::move(settings)) {}

std::string Workshop::freshFolder(const std::string& name) const {
    std::string path = at(name);
    fs::remove_all(path);
    fs::create_directories(path);
    return path;
}

std::string Workshop::freshAccount(const std::string& name) const {
    std::string path = freshFolder(name);
    makeEmptyAccount(path);
    return path;
}

std::string Workshop::account(const std::string& name, const std::vector<std::string>& arguments) const {
    std::string path = at(name);
    if (fs::exists(path)) return path;
    std::vector<std::string> all = {"account", path};
    all.insert(all.end(), arguments.begin(), arguments.end());
    // In a process of its own: a child's peak memory counts from what its parent held when it was started.
    run(own("bench-data", all));
    return path;
}

Command Workshop::own(const std::string& program, std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), programs_.folder + "/" + program);
    return {std::move(arguments), "", ""};
}

void Workshop::clear() const {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
}

std::vector<std::string> sizedAccount(int messages) {
    constexpr int kPerConversation = 1000;
    return {"--conversations", std::to_string(messages / kPerConversation), "--messages",
            std::to_string(kPerConversation)};
}

}  // namespace bench
