// Runs a command and writes what it used, from its start to its end, as a JSON object into a file:
//
//   bench-measure FILE COMMAND [ARGUMENT...]
//
// A program of its own, and a small one: the system counts the memory of whoever starts a process into the peak of that
// process.
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);  // whoever stops the comparison stops what it measures
        execvp(argv[2], argv + 2);
        std::perror(argv[2]);
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) != child || !WIFEXITED(status)) return 1;
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - begin;
    std::FILE* file = std::fopen(argv[1], "w");
    if (file == nullptr) return 1;
    std::fprintf(file, R"({"cpu": %.6f, "wall": %.6f, "peak": %ld})", seconds(usage.ru_utime) + seconds(usage.ru_stime),
                 wall.count(), usage.ru_maxrss * 1024);
    return std::fclose(file) == 0 ? WEXITSTATUS(status) : 1;
}
