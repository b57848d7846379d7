#include "host/cipher/cipher_files.h"

#include <fcntl.h>

#include <cerrno>
#include <system_error>

#include "host/cipher/cipher_error.h"

namespace cipher {
namespace {

constexpr const char* cannotWrite = "cannot write output";

// Open as long as the output is being written, so that it gets its name where it began to grow.
tools::detail::FileHandle openFolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    tools::detail::FileHandle handle(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!handle.valid()) {
        failWithErrno(cannotWrite);
    }
    return handle;
}

}  // namespace

void failWithErrno(const char* what) {
    const int code = errno;
    throw Failure(std::string(what) + ": " + std::generic_category().message(code));
}

InputFile::InputFile(const char* path) : file_(tools::detail::openRegularFile(AT_FDCWD, path, false)) {
    if (file_.valid()) {
        return;
    }
    if (tools::detail::meansNotRegular(errno)) {
        throw Failure("input is not a regular file");
    }
    failWithErrno("cannot open input");
}

std::size_t InputFile::read(unsigned char* bytes, std::size_t size) {
    const ssize_t count = tools::detail::readBlock(file_.get(), bytes, size);
    if (count < 0) {
        failWithErrno("cannot read input");
    }
    return static_cast<std::size_t>(count);
}

OutputFile::OutputFile(const std::string& path)
    : folder_(openFolderOf(path)), file_(folder_.get(), path.substr(path.rfind('/') + 1)) {
    if (!file_.valid()) {
        failWithErrno(cannotWrite);
    }
}

void OutputFile::write(const unsigned char* bytes, std::size_t size) {
    if (!tools::detail::writeAll(file_.get(), bytes, size)) {
        failWithErrno(cannotWrite);
    }
}

void OutputFile::commit() {
    if (!file_.commit()) {
        failWithErrno(cannotWrite);
    }
}

}  // namespace cipher
