#include "tests/faults/fault_calls.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>

namespace test {
namespace {

struct Plan {
    bool armed = false;
    Fault fault{};
    long long nth = 0;
    long long seen = 0;
};
thread_local Plan plan;

enum class Verdict { pass, fail, cut };

// Counts the call and says what becomes of it; sets errno for a failing one.
Verdict judge(Call call) {
    if (!plan.armed || plan.fault.call != call) return Verdict::pass;
    ++plan.seen;
    if (plan.seen < plan.nth || (plan.seen > plan.nth && plan.fault.duration == Duration::once)) return Verdict::pass;
    if (plan.fault.failure == Failure::shortWrite && plan.seen == plan.nth) return Verdict::cut;
    errno = plan.fault.failure == Failure::inputOutput ? EIO : ENOSPC;
    return Verdict::fail;
}

template <class Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

bool isLock(int command) {
    constexpr std::array<int, 6> kLocks = {F_SETLK, F_SETLKW, F_SETLK64, F_SETLKW64, F_OFD_SETLK, F_OFD_SETLKW};
    return std::find(kLocks.begin(), kLocks.end(), command) != kLocks.end();
}

// The size of a write that is cut short: never nothing, which would be an end and no progress.
std::size_t cutSize(std::size_t size) {
    return std::max<std::size_t>(1, size / 2);
}

}  // namespace

std::string describe(const Fault& fault) {
    constexpr std::array<const char*, kAllCalls.size()> kCalls = {
        "open", "read", "write", "sync", "rename", "remove", "mkdir", "close", "stat", "readdir", "lock"};
    constexpr std::array<const char*, 3> kFailures = {"EIO", "ENOSPC", "short"};
    return std::string(kCalls.at(static_cast<std::size_t>(fault.call))) + " " +
           kFailures.at(static_cast<std::size_t>(fault.failure)) +
           (fault.duration == Duration::once ? " once" : " from then on");
}

InjectedFault::InjectedFault(const Fault& fault, long long nth) {
    plan = {true, fault, nth, 0};
}
InjectedFault::~InjectedFault() {
    plan.armed = false;
}
bool InjectedFault::struck() const {
    return plan.seen >= plan.nth;
}

}  // namespace test

using test::Call;
using test::Verdict;

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,cert-dcl50-cpp,cppcoreguidelines-pro-type-vararg,readability-inconsistent-declaration-parameter-name):
// the signatures are those of the C library.
extern "C" {

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (test::judge(Call::open) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(const char*, int, ...)>("open");
    return real(path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (test::judge(Call::open) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(const char*, int, ...)>("open64");
    return real(path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (test::judge(Call::open) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(int, const char*, int, ...)>("openat");
    return real(folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (test::judge(Call::open) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(int, const char*, int, ...)>("openat64");
    return real(folder, path, flags, mode);
}

ssize_t read(int descriptor, void* bytes, size_t size) {
    if (test::judge(Call::read) != Verdict::pass) return -1;
    static const auto real = test::next<ssize_t (*)(int, void*, size_t)>("read");
    return real(descriptor, bytes, size);
}

ssize_t pread64(int descriptor, void* bytes, size_t size, off64_t offset) {
    if (test::judge(Call::read) != Verdict::pass) return -1;
    static const auto real = test::next<ssize_t (*)(int, void*, size_t, off64_t)>("pread64");
    return real(descriptor, bytes, size, offset);
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
    const Verdict verdict = test::judge(Call::write);
    if (verdict == Verdict::fail) return -1;
    static const auto real = test::next<ssize_t (*)(int, const void*, size_t)>("write");
    return real(descriptor, bytes, verdict == Verdict::cut ? test::cutSize(size) : size);
}

ssize_t pwrite64(int descriptor, const void* bytes, size_t size, off64_t offset) {
    const Verdict verdict = test::judge(Call::write);
    if (verdict == Verdict::fail) return -1;
    static const auto real = test::next<ssize_t (*)(int, const void*, size_t, off64_t)>("pwrite64");
    return real(descriptor, bytes, verdict == Verdict::cut ? test::cutSize(size) : size, offset);
}

ssize_t copy_file_range(int from, off64_t* fromOffset, int to, off64_t* toOffset, size_t size, unsigned flags) {
    const Verdict verdict = test::judge(Call::write);
    if (verdict == Verdict::fail) return -1;
    static const auto real = test::next<ssize_t (*)(int, off64_t*, int, off64_t*, size_t, unsigned)>("copy_file_range");
    return real(from, fromOffset, to, toOffset, verdict == Verdict::cut ? 1 : size, flags);
}

int ftruncate64(int descriptor, off64_t size) noexcept {
    if (test::judge(Call::write) == Verdict::fail) return -1;
    static const auto real = test::next<int (*)(int, off64_t)>("ftruncate64");
    return real(descriptor, size);
}

// What reaches the disk when is not seen by these tests, and waiting for it would make hours of minutes.
int fsync(int /*descriptor*/) {
    return test::judge(Call::sync) == Verdict::pass ? 0 : -1;
}
int fdatasync(int /*descriptor*/) {
    return test::judge(Call::sync) == Verdict::pass ? 0 : -1;
}
int syncfs(int /*descriptor*/) noexcept {
    return test::judge(Call::sync) == Verdict::pass ? 0 : -1;
}

int rename(const char* from, const char* to) noexcept {
    if (test::judge(Call::rename) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(const char*, const char*)>("rename");
    return real(from, to);
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    if (test::judge(Call::rename) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(int, const char*, int, const char*)>("renameat");
    return real(fromFolder, from, toFolder, to);
}

int unlink(const char* path) noexcept {
    if (test::judge(Call::remove) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(const char*)>("unlink");
    return real(path);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
    if (test::judge(Call::remove) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(int, const char*, int)>("unlinkat");
    return real(folder, path, flags);
}

int remove(const char* path) noexcept {
    if (test::judge(Call::remove) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(const char*)>("remove");
    return real(path);
}

int mkdir(const char* path, mode_t mode) noexcept {
    if (test::judge(Call::makeFolder) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(const char*, mode_t)>("mkdir");
    return real(path, mode);
}

int mkdirat(int folder, const char* path, mode_t mode) noexcept {
    if (test::judge(Call::makeFolder) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(int, const char*, mode_t)>("mkdirat");
    return real(folder, path, mode);
}

int stat(const char* path, struct stat* status) noexcept {
    if (test::judge(Call::look) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(const char*, struct stat*)>("stat");
    return real(path, status);
}

int lstat(const char* path, struct stat* status) noexcept {
    if (test::judge(Call::look) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(const char*, struct stat*)>("lstat");
    return real(path, status);
}

int fstat(int descriptor, struct stat* status) noexcept {
    if (test::judge(Call::look) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(int, struct stat*)>("fstat");
    return real(descriptor, status);
}

int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
    if (test::judge(Call::look) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(int, const char*, struct stat*, int)>("fstatat");
    return real(folder, path, status, flags);
}

int stat64(const char* path, struct stat64* status) noexcept {
    if (test::judge(Call::look) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(const char*, struct stat64*)>("stat64");
    return real(path, status);
}

int lstat64(const char* path, struct stat64* status) noexcept {
    if (test::judge(Call::look) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(const char*, struct stat64*)>("lstat64");
    return real(path, status);
}

int fstat64(int descriptor, struct stat64* status) noexcept {
    if (test::judge(Call::look) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(int, struct stat64*)>("fstat64");
    return real(descriptor, status);
}

int fstatat64(int folder, const char* path, struct stat64* status, int flags) noexcept {
    if (test::judge(Call::look) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(int, const char*, struct stat64*, int)>("fstatat64");
    return real(folder, path, status, flags);
}

DIR* opendir(const char* path) {
    if (test::judge(Call::list) != Verdict::pass) return nullptr;
    static const auto real = test::next<DIR* (*)(const char*)>("opendir");
    return real(path);
}

DIR* fdopendir(int descriptor) {
    if (test::judge(Call::list) != Verdict::pass) return nullptr;
    static const auto real = test::next<DIR* (*)(int)>("fdopendir");
    return real(descriptor);
}

struct dirent* readdir(DIR* folder) {
    if (test::judge(Call::list) != Verdict::pass) return nullptr;
    static const auto real = test::next<struct dirent* (*)(DIR*)>("readdir");
    return real(folder);
}

struct dirent64* readdir64(DIR* folder) {
    if (test::judge(Call::list) != Verdict::pass) return nullptr;
    static const auto real = test::next<struct dirent64* (*)(DIR*)>("readdir64");
    return real(folder);
}

int fcntl(int descriptor, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    if (test::isLock(command) && test::judge(Call::lock) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(int, int, ...)>("fcntl");
    return real(descriptor, command, argument);
}

int fcntl64(int descriptor, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    if (test::isLock(command) && test::judge(Call::lock) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(int, int, ...)>("fcntl64");
    return real(descriptor, command, argument);
}

#if __SIZEOF_POINTER__ == 4
// What code with 64-bit times calls on 32-bit systems; the structures are larger than those that this source knows.
int __stat64_time64(const char* path, void* status) {
    if (test::judge(Call::look) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(const char*, void*)>("__stat64_time64");
    return real(path, status);
}

int __lstat64_time64(const char* path, void* status) {
    if (test::judge(Call::look) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(const char*, void*)>("__lstat64_time64");
    return real(path, status);
}

int __fstat64_time64(int descriptor, void* status) {
    if (test::judge(Call::look) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(int, void*)>("__fstat64_time64");
    return real(descriptor, status);
}

int __fstatat64_time64(int folder, const char* path, void* status, int flags) {
    if (test::judge(Call::look) != Verdict::pass) return -1;
    static const auto real = test::next<int (*)(int, const char*, void*, int)>("__fstatat64_time64");
    return real(folder, path, status, flags);
}
#endif

// A close that fails has closed all the same.
int close(int descriptor) {
    static const auto real = test::next<int (*)(int)>("close");
    const int result = real(descriptor);
    return test::judge(Call::close) == Verdict::pass ? result : -1;
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,cert-dcl50-cpp,cppcoreguidelines-pro-type-vararg,readability-inconsistent-declaration-parameter-name)
