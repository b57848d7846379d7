// What a program asks of the disk: linked into it, this counts the syncs (of files, and of folders when a journal comes
// or goes) and the bytes written, and prints them at the end. On a phone a sync costs more than all the computing.
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>

namespace {

long long syncs = 0;
long long bytesWritten = 0;

__attribute__((destructor)) void print() {
    std::printf("%lld %lld\n", syncs, bytesWritten);
}

}  // namespace

// Whoever is linked into this program calls these instead of the C library's, whose parameters have reserved names.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {

int fsync(int file) {
    ++syncs;
    return static_cast<int>(syscall(SYS_fsync, file));
}

int fdatasync(int file) {
    ++syncs;
    return static_cast<int>(syscall(SYS_fdatasync, file));
}

ssize_t write(int file, const void* bytes, size_t size) {
    bytesWritten += static_cast<long long>(size);
    return syscall(SYS_write, file, bytes, size);
}

ssize_t pwrite64(int file, const void* bytes, size_t size, off64_t offset) {
    bytesWritten += static_cast<long long>(size);
    return syscall(SYS_pwrite64, file, bytes, size, offset);
}
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
