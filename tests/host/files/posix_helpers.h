// Places and limits of the operating system that the tests of the file utilities need.
#pragma once

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace test {

/// A symbolic link at `path`; gives `path`.
inline std::string makeLink(const std::string& target, const std::string& path) {
    std::filesystem::create_symlink(target, path);
    return path;
}

/// A FIFO that nobody writes to: opening it the plain way would wait for ever.
inline std::string makeFifo(const std::string& path) {
    if (mkfifo(path.c_str(), 0600) != 0) throw std::runtime_error("cannot make a FIFO at " + path);
    return path;
}

/// Nothing is masked from the modes of new files, so that a mode that depends on the umask shows.
class NoUmask {
public:
    NoUmask() : before_(umask(0)) {}
    ~NoUmask() { umask(before_); }
    NoUmask(const NoUmask&) = delete;
    NoUmask& operator=(const NoUmask&) = delete;
    NoUmask(NoUmask&&) = delete;
    NoUmask& operator=(NoUmask&&) = delete;

private:
    mode_t before_;
};

/// No file grows beyond the limit: writing more fails as on a full disk.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : signalBefore_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        (void)std::signal(SIGXFSZ, signalBefore_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    FileSizeLimit(FileSizeLimit&&) = delete;
    FileSizeLimit& operator=(FileSizeLimit&&) = delete;

private:
    rlimit before_{};
    void (*signalBefore_)(int);
};

/// Permissions count: a test that runs as root gives its rights up for a while.
class OrdinaryUser {
public:
    OrdinaryUser() : root_(geteuid() == 0) {
        constexpr uid_t kNobody = 65534;
        if (root_ && seteuid(kNobody) != 0) throw std::runtime_error("cannot give up the rights of root");
    }
    ~OrdinaryUser() {
        if (!root_) return;
        EXPECT_EQ(0, seteuid(0));
        prctl(PR_SET_DUMPABLE, 1);  // the change of user cleared it, and the leak check needs it
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    OrdinaryUser(OrdinaryUser&&) = delete;
    OrdinaryUser& operator=(OrdinaryUser&&) = delete;

private:
    bool root_;
};

}  // namespace test
