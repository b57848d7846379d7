// Calls of the operating system that fail when a test says so.
//
// fault_calls.cpp defines open(), read(), write(), ... in the test program. The dynamic linker prefers these to those
// of the C library for everything in the process: our own code, SQLite and the C++ library alike. See
// docs/decisions/0009-faults-by-interposition.md.
#pragma once

#include <array>
#include <string>

namespace test {

enum class Call {
    open,
    read,
    write,
    sync,
    rename,
    remove,
    makeFolder,
    close,
    look,  ///< stat() and its kin
    list,  ///< the entries of a folder
    lock,
};

inline constexpr std::array<Call, 11> kAllCalls = {Call::open,   Call::read,   Call::write,      Call::sync,
                                                   Call::rename, Call::remove, Call::makeFolder, Call::close,
                                                   Call::look,   Call::list,   Call::lock};

enum class Failure {
    inputOutput,  ///< EIO
    diskFull,     ///< ENOSPC
    shortWrite,   ///< half of the bytes are written; what follows, if it fails too, gives ENOSPC
};

enum class Duration { once, fromThenOn };

struct Fault {
    Call call;
    Failure failure;
    Duration duration;
};

std::string describe(const Fault& fault);

/// While it lives, the `nth` call (from 1) of the kind on this thread fails.
class InjectedFault {
public:
    InjectedFault(const Fault& fault, long long nth);
    ~InjectedFault();
    InjectedFault(const InjectedFault&) = delete;
    InjectedFault& operator=(const InjectedFault&) = delete;

    /// Whether the call happened.
    bool struck() const;
};

}  // namespace test
