#include "host/cipher/cipher_files.h"

#include <fcntl.h>
#include <openssl/rand.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include "host/cipher/cipher_error.h"

namespace cipher {
namespace {

constexpr const char* cannotWrite = "cannot write output";

int openInput(const char* path) {
    const int fd = ::open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NOFOLLOW | O_NONBLOCK);
    // A symbolic link reports ELOOP, a socket ENXIO.
    if (fd < 0 && (errno == ELOOP || errno == ENXIO)) {
        throw Failure("input is not a regular file");
    }
    if (fd < 0) {
        failWithErrno("cannot open input");
    }
    return fd;
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return path.substr(0, slash + 1);
}

int openFolder(const std::string& path) {
    const int fd = ::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        failWithErrno(cannotWrite);
    }
    return fd;
}

// Independent of the output's name, which may already be as long as the file system allows. The ending is none of those
// by which a directory walk recognises the files of a transfer.
std::string makeHiddenName() {
    std::array<unsigned char, 8> random{};
    if (RAND_bytes(random.data(), static_cast<int>(random.size())) != 1) {
        throw Failure("no random numbers");
    }
    std::string name = ".caes-";
    for (const unsigned char byte : random) {
        name += "0123456789abcdef"[byte >> 4];
        name += "0123456789abcdef"[byte & 15];
    }
    return name + ".part";
}

int createHidden(int folder, const std::string& name) {
    const int fd = ::openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0) {
        failWithErrno(cannotWrite);
    }
    return fd;
}

}  // namespace

void failWithErrno(const char* what) {
    const int code = errno;
    throw Failure(std::string(what) + ": " + std::generic_category().message(code));
}

Descriptor::~Descriptor() {
    if (fd_ >= 0) {
        ::close(fd_);
    }
}

int Descriptor::release() {
    const int fd = fd_;
    fd_ = -1;
    return fd;
}

InputFile::InputFile(const char* path) : fd_(openInput(path)) {
    struct stat status {};
    if (::fstat(fd_.get(), &status) != 0) {
        failWithErrno("cannot open input");
    }
    if (!S_ISREG(status.st_mode)) {
        throw Failure("input is not a regular file");
    }
}

std::size_t InputFile::read(unsigned char* bytes, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = ::read(fd_.get(), bytes + done, size - done);
        if (count == 0) {
            break;
        }
        if (count < 0 && errno != EINTR) {
            failWithErrno("cannot read input");
        }
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return done;
}

OutputFile::OutputFile(const std::string& path)
    : folder_(openFolder(folderOf(path))),
      name_(path.substr(path.rfind('/') + 1)),
      hiddenName_(makeHiddenName()),
      fd_(createHidden(folder_.get(), hiddenName_)) {}

OutputFile::~OutputFile() {
    if (!committed_) {
        ::unlinkat(folder_.get(), hiddenName_.c_str(), 0);
    }
}

void OutputFile::write(const unsigned char* bytes, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = ::write(fd_.get(), bytes + done, size - done);
        if (count < 0 && errno != EINTR) {
            failWithErrno(cannotWrite);
        }
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

void OutputFile::commit() {
    if (::fsync(fd_.get()) != 0 || ::close(fd_.release()) != 0 ||
        ::renameat(folder_.get(), hiddenName_.c_str(), folder_.get(), name_.c_str()) != 0) {
        failWithErrno(cannotWrite);
    }
    committed_ = true;
}

}  // namespace cipher
