#include "bench/driver/process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace bench {
namespace {

volatile std::sig_atomic_t interrupted = 0;

void noteInterrupt(int /*signal*/) {
    interrupted = 1;
}

// Where the child's standard streams lead.
class Redirections {
public:
    explicit Redirections(const Command& command) {
        posix_spawn_file_actions_init(&actions_);
        open(STDIN_FILENO, command.input, O_RDONLY);
        open(STDOUT_FILENO, command.output, O_WRONLY | O_CREAT | O_TRUNC);
    }
    ~Redirections() { posix_spawn_file_actions_destroy(&actions_); }
    Redirections(const Redirections&) = delete;
    Redirections& operator=(const Redirections&) = delete;
    Redirections(Redirections&&) = delete;
    Redirections& operator=(Redirections&&) = delete;

    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    void open(int descriptor, const std::string& path, int flags) {
        const char* target = path.empty() ? "/dev/null" : path.c_str();
        posix_spawn_file_actions_addopen(&actions_, descriptor, target, flags, 0600);
    }

    posix_spawn_file_actions_t actions_{};
};

pid_t start(const Command& command) {
    std::vector<std::string> words = command.words;
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const Redirections redirections(command);
    pid_t child = 0;
    const int code = posix_spawnp(&child, arguments[0], redirections.get(), nullptr, arguments.data(), environ);
    if (code != 0) throw std::runtime_error("cannot start " + command.words[0]);
    return child;
}

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

// Waits for the child's end; an interrupt ends it.
int waitFor(pid_t child, rusage& usage) {
    int status = 0;
    bool told = false;
    while (wait4(child, &status, 0, &usage) != child) {
        if (told || interrupted == 0) continue;
        kill(child, SIGTERM);
        told = true;
    }
    return status;
}

std::string wordsOf(const Command& command) {
    std::string text;
    for (const std::string& word : command.words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

}  // namespace

void stopOnInterrupt() {
    // Without SA_RESTART: the waiting has to notice.
    struct sigaction action {};
    action.sa_handler = noteInterrupt;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

Cost runProcess(const Command& command) {
    if (interrupted != 0) throw std::runtime_error("interrupted");
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = start(command);
    rusage usage{};
    const int status = waitFor(child, usage);
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - begin;
    if (interrupted != 0) throw std::runtime_error("interrupted");
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) throw std::runtime_error("failed: " + wordsOf(command));
    constexpr double kKibibyte = 1024;
    return {seconds(usage.ru_utime) + seconds(usage.ru_stime), wall.count(),
            static_cast<double>(usage.ru_maxrss) * kKibibyte};
}

std::string firstLine(const Command& command, const std::string& scratchFile) {
    Command redirected = command;
    redirected.output = scratchFile;
    try {
        runProcess(redirected);
    } catch (const std::runtime_error&) {
        return {};
    }
    std::ifstream file(scratchFile);
    std::string line;
    std::getline(file, line);
    return line;
}

std::string programInPath(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::istringstream folders(path != nullptr ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::string candidate = folder + "/" + name;
        if (access(candidate.c_str(), X_OK) == 0) return candidate;
    }
    return {};
}

}  // namespace bench
