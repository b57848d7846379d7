#include "tests/app/program.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "tests/support/temp_dir.h"

namespace test {
namespace {

constexpr const char* kProgram = CHAT_TRANSFER_PROGRAM;

struct Pipe {
    Pipe() {
        if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    }
    std::array<int, 2> ends{};
};

// Between fork and exec: everything that the setting says.
void prepareChild(const Setting& setting) {
    unsetenv("CHAT_TRANSFER_KEY");
    for (const std::string& variable : setting.environment)
        putenv(strdup(variable.c_str()));
    if (setting.largestFile > 0) {
        static_cast<void>(signal(SIGXFSZ, SIG_IGN));  // the write fails instead
        const rlimit limit{static_cast<rlim_t>(setting.largestFile), static_cast<rlim_t>(setting.largestFile)};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    if (!setting.workingDirectory.empty() && chdir(setting.workingDirectory.c_str()) != 0) _exit(126);
}

[[noreturn]] void execute(const std::string& path, const Arguments& arguments) {
    std::vector<char*> argv = {const_cast<char*>(path.c_str())};  // NOLINT(cppcoreguidelines-pro-type-const-cast)
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));  // NOLINT(cppcoreguidelines-pro-type-const-cast)
    }
    argv.push_back(nullptr);
    execv(path.c_str(), argv.data());
    _exit(127);
}

// False at the end of the stream.
bool readSome(int descriptor, std::string& text) {
    std::array<char, 4096> buffer{};
    const ssize_t count = read(descriptor, buffer.data(), buffer.size());
    if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
    return count > 0;
}

void readBoth(int out, int err, Outcome& run) {
    bool outOpen = true;
    bool errOpen = true;
    while (outOpen || errOpen) {
        std::array<pollfd, 2> waits = {{{outOpen ? out : -1, POLLIN, 0}, {errOpen ? err : -1, POLLIN, 0}}};
        poll(waits.data(), waits.size(), -1);
        if (waits[0].revents != 0) outOpen = readSome(out, run.out);
        if (waits[1].revents != 0) errOpen = readSome(err, run.err);
    }
}

void collect(pid_t child, Outcome& run) {
    int status = 0;
    waitpid(child, &status, 0);
    run.killed = WIFSIGNALED(status);
    if (WIFEXITED(status)) run.code = WEXITSTATUS(status);
}

}  // namespace

Arguments joined(Arguments first, const Arguments& more) {
    first.insert(first.end(), more.begin(), more.end());
    return first;
}

Outcome runProgram(const std::string& path, const Arguments& arguments, const Setting& setting) {
    const Pipe out;
    const Pipe err;
    const pid_t child = fork();
    if (child == 0) {
        prepareChild(setting);
        dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
        dup2(out.ends[1], STDOUT_FILENO);
        dup2(err.ends[1], STDERR_FILENO);
        setsid();  // without a terminal that it could ask on
        execute(path, arguments);
    }
    close(out.ends[1]);
    close(err.ends[1]);
    Outcome run;
    readBoth(out.ends[0], err.ends[0], run);
    close(out.ends[0]);
    close(err.ends[0]);
    collect(child, run);
    return run;
}

Outcome chatTransfer(const Arguments& arguments, const Setting& setting) {
    return runProgram(kProgram, arguments, setting);
}

Outcome chatTransferOnTerminal(const Arguments& arguments, const std::vector<Answer>& answers) {
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        prepareChild({});
        execute(kProgram, arguments);
    }
    Outcome run;
    auto next = answers.begin();
    while (readSome(terminal, run.out)) {
        if (next == answers.end() || run.out.find(next->prompt) == std::string::npos) continue;
        usleep(static_cast<useconds_t>(next->pause) * 1000);
        if (write(terminal, next->typed.data(), next->typed.size()) < 0) break;
        ++next;
    }
    close(terminal);
    collect(child, run);
    return run;
}

pid_t startChatTransfer(const Arguments& arguments) {
    const pid_t child = fork();
    if (child != 0) return child;
    prepareChild({});
    const int nowhere = open("/dev/null", O_RDWR);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(nowhere, descriptor);
    execute(kProgram, arguments);
}

Outcome waitFor(pid_t child) {
    Outcome run;
    collect(child, run);
    return run;
}

bool isOver(pid_t child) {
    siginfo_t end = {};
    return waitid(P_PID, static_cast<id_t>(child), &end, WEXITED | WNOHANG | WNOWAIT) != 0 || end.si_pid == child;
}

bool waitUntilThere(const std::string& path) {
    constexpr int kTries = 10000;
    constexpr useconds_t kPause = 1000;
    for (int i = 0; i < kTries; ++i) {
        if (exists(path)) return true;
        usleep(kPause);
    }
    return false;
}

}  // namespace test
