#include "bench/driver/machine.h"

#include <sqlite3.h>
#include <sys/utsname.h>
#include <sys/vfs.h>

#include <fstream>
#include <map>
#include <sstream>
#include <thread>

namespace bench {
namespace {

// The value of the first line "key : value" or "key=value" of a file.
std::string valueOf(const std::string& path, const std::string& key) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.compare(0, key.size(), key) != 0) continue;
        const std::size_t begin = line.find_first_not_of(" \t:=\"", key.size());
        if (begin == std::string::npos) return {};
        return line.substr(begin, line.find_last_not_of(" \"") + 1 - begin);
    }
    return {};
}

long long memoryInfo(const std::string& key) {
    long long kibibytes = 0;
    std::istringstream(valueOf("/proc/meminfo", key)) >> kibibytes;
    return kibibytes * 1024;
}

std::string memory() {
    constexpr long long kGibibyte = 1LL << 30;
    return std::to_string((memoryInfo("MemTotal") + kGibibyte / 2) / kGibibyte) + " GiB";
}

std::string fileSystem(const std::string& path) {
    static const std::map<long, const char*> names = {
        {0xEF53, "ext4"}, {0x01021994, "tmpfs"}, {0x58465342, "xfs"}, {0x9123683E, "btrfs"}, {0x794C7630, "overlayfs"}};
    struct statfs status {};
    if (statfs(path.c_str(), &status) != 0) return "unknown";
    const auto found = names.find(static_cast<long>(status.f_type));
    return found != names.end() ? found->second : "other";
}

std::string system() {
    utsname name{};
    uname(&name);
    return valueOf("/etc/os-release", "PRETTY_NAME") + ", kernel " + name.release;
}

std::string compiler() {
#ifdef __clang__
    return __VERSION__;
#else
    return std::string("GCC ") + __VERSION__;
#endif
}

}  // namespace

long long availableMemory() {
    return memoryInfo("MemAvailable");
}

std::vector<std::pair<std::string, std::string>> describeMachine(const Workshop& workshop) {
    const std::string scratch = workshop.at("version");
    std::vector<std::pair<std::string, std::string>> lines = {
        {"Processor", valueOf("/proc/cpuinfo", "model name") + ", " +
                          std::to_string(std::thread::hardware_concurrency()) + " hardware threads"},
        {"Memory", memory()},
        {"System", system()},
        {"File system of the work folder", fileSystem(workshop.at(""))},
        {"Compiler", compiler()},
        {"SQLite of floor and project", sqlite3_libversion()}};
    const Programs& programs = workshop.programs();
    if (!programs.shell.empty())
        lines.emplace_back("`sqlite3` program",
                           firstLine({{programs.shell, "--version"}, "", ""}, scratch).substr(0, 6));
    if (!programs.python.empty())
        lines.emplace_back("Python", firstLine({{programs.python, "--version"}, "", ""}, scratch));
    return lines;
}

}  // namespace bench
