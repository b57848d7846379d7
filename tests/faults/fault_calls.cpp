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

// Calls the function of that name and type in the C library, unless the call has to fail.
template <class Function, class Result, class... Arguments>
Result passOrFailAs(Call call, Result failure, const char* name, Arguments... arguments) {
    return judge(call) == Verdict::pass ? next<Function>(name)(arguments...) : failure;
}

// The same for a function that takes just these arguments.
template <class Result, class... Arguments>
Result passOrFail(Call call, Result failure, const char* name, Arguments... arguments) {
    return passOrFailAs<Result (*)(Arguments...)>(call, failure, name, arguments...);
}

// The mode behind the flags of open(), which is there for new files only.
mode_t modeFor(int flags, va_list arguments) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

bool isLock(int command) {
    constexpr std::array<int, 6> kLocks = {F_SETLK, F_SETLKW, F_SETLK64, F_SETLKW64, F_OFD_SETLK, F_OFD_SETLKW};
    return std::find(kLocks.begin(), kLocks.end(), command) != kLocks.end();
}

// Of all that fcntl() does, only locks fail.
int fcntlOrFail(const char* name, int descriptor, int command, void* argument) {
    using Fcntl = int (*)(int, int, ...);
    if (isLock(command)) return passOrFailAs<Fcntl>(Call::lock, -1, name, descriptor, command, argument);
    return next<Fcntl>(name)(descriptor, command, argument);
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
    const mode_t mode = test::modeFor(flags, arguments);
    va_end(arguments);
    return test::passOrFailAs<int (*)(const char*, int, ...)>(Call::open, -1, "open", path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = test::modeFor(flags, arguments);
    va_end(arguments);
    return test::passOrFailAs<int (*)(const char*, int, ...)>(Call::open, -1, "open64", path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = test::modeFor(flags, arguments);
    va_end(arguments);
    return test::passOrFailAs<int (*)(int, const char*, int, ...)>(Call::open, -1, "openat", folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = test::modeFor(flags, arguments);
    va_end(arguments);
    return test::passOrFailAs<int (*)(int, const char*, int, ...)>(Call::open, -1, "openat64", folder, path, flags,
                                                                   mode);
}

ssize_t read(int descriptor, void* bytes, size_t size) {
    return test::passOrFail<ssize_t>(Call::read, -1, "read", descriptor, bytes, size);
}

ssize_t pread64(int descriptor, void* bytes, size_t size, off64_t offset) {
    return test::passOrFail<ssize_t>(Call::read, -1, "pread64", descriptor, bytes, size, offset);
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
    return test::passOrFail(Call::rename, -1, "rename", from, to);
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    return test::passOrFail(Call::rename, -1, "renameat", fromFolder, from, toFolder, to);
}

int unlink(const char* path) noexcept {
    return test::passOrFail(Call::remove, -1, "unlink", path);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
    return test::passOrFail(Call::remove, -1, "unlinkat", folder, path, flags);
}

int remove(const char* path) noexcept {
    return test::passOrFail(Call::remove, -1, "remove", path);
}

int mkdir(const char* path, mode_t mode) noexcept {
    return test::passOrFail(Call::makeFolder, -1, "mkdir", path, mode);
}

int mkdirat(int folder, const char* path, mode_t mode) noexcept {
    return test::passOrFail(Call::makeFolder, -1, "mkdirat", folder, path, mode);
}

int stat(const char* path, struct stat* status) noexcept {
    return test::passOrFail(Call::look, -1, "stat", path, status);
}

int lstat(const char* path, struct stat* status) noexcept {
    return test::passOrFail(Call::look, -1, "lstat", path, status);
}

int fstat(int descriptor, struct stat* status) noexcept {
    return test::passOrFail(Call::look, -1, "fstat", descriptor, status);
}

int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
    return test::passOrFail(Call::look, -1, "fstatat", folder, path, status, flags);
}

int stat64(const char* path, struct stat64* status) noexcept {
    return test::passOrFail(Call::look, -1, "stat64", path, status);
}

int lstat64(const char* path, struct stat64* status) noexcept {
    return test::passOrFail(Call::look, -1, "lstat64", path, status);
}

int fstat64(int descriptor, struct stat64* status) noexcept {
    return test::passOrFail(Call::look, -1, "fstat64", descriptor, status);
}

int fstatat64(int folder, const char* path, struct stat64* status, int flags) noexcept {
    return test::passOrFail(Call::look, -1, "fstatat64", folder, path, status, flags);
}

DIR* opendir(const char* path) {
    return test::passOrFail<DIR*>(Call::list, nullptr, "opendir", path);
}

DIR* fdopendir(int descriptor) {
    return test::passOrFail<DIR*>(Call::list, nullptr, "fdopendir", descriptor);
}

struct dirent* readdir(DIR* folder) {
    return test::passOrFail<struct dirent*>(Call::list, nullptr, "readdir", folder);
}

struct dirent64* readdir64(DIR* folder) {
    return test::passOrFail<struct dirent64*>(Call::list, nullptr, "readdir64", folder);
}

int fcntl(int descriptor, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return test::fcntlOrFail("fcntl", descriptor, command, argument);
}

int fcntl64(int descriptor, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return test::fcntlOrFail("fcntl64", descriptor, command, argument);
}

#if __SIZEOF_POINTER__ == 4
// What code with 64-bit times calls on 32-bit systems; the structures are larger than those that this source knows.
int __stat64_time64(const char* path, void* status) {
    return test::passOrFail(Call::look, -1, "__stat64_time64", path, status);
}

int __lstat64_time64(const char* path, void* status) {
    return test::passOrFail(Call::look, -1, "__lstat64_time64", path, status);
}

int __fstat64_time64(int descriptor, void* status) {
    return test::passOrFail(Call::look, -1, "__fstat64_time64", descriptor, status);
}

int __fstatat64_time64(int folder, const char* path, void* status, int flags) {
    return test::passOrFail(Call::look, -1, "__fstatat64_time64", folder, path, status, flags);
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
