// Places and limits of the operating system.
#pragma once

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace test {

/// A symbolic link at `path`, missing folders included; gives `path`.
inline std::string makeLink(const std::string& target, const std::string& path) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::filesystem::create_symlink(target, path);
    return path;
}

/// A FIFO that nobody writes to, missing folders included: opening it the plain way would wait for ever.
inline std::string makeFifo(const std::string& path) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
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

private:
    rlimit before_{};
    void (*signalBefore_)(int);
};

/// The process may have only so many files open at a time.
class OpenFileLimit {
public:
    explicit OpenFileLimit(rlim_t count) {
        getrlimit(RLIMIT_NOFILE, &before_);
        const rlimit limit{count, before_.rlim_max};
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    ~OpenFileLimit() { setrlimit(RLIMIT_NOFILE, &before_); }
    OpenFileLimit(const OpenFileLimit&) = delete;
    OpenFileLimit& operator=(const OpenFileLimit&) = delete;

private:
    rlimit before_{};
};

/// A folder on another file system than the one of TempDir; empty when this machine has none.
class OtherFileSystem {
public:
    explicit OtherFileSystem(const std::string& than) {
        struct stat here {};
        struct stat there {};
        std::string pattern = "/dev/shm/ct-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) return;
        path_ = pattern;
        stat(than.c_str(), &here);
        stat(path_.c_str(), &there);
        differs_ = here.st_dev != there.st_dev;
    }
    ~OtherFileSystem() {
        std::error_code ignored;
        if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
    }
    OtherFileSystem(const OtherFileSystem&) = delete;
    OtherFileSystem& operator=(const OtherFileSystem&) = delete;

    std::string path() const { return differs_ ? path_ : ""; }

private:
    std::string path_;
    bool differs_ = false;
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

private:
    bool root_;
};

}  // namespace test
