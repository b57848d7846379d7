#pragma once

#include <stdexcept>

/// The reason why one file could not be encrypted or decrypted. CAES turns it into the text its caller sees.
namespace cipher {

class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Throws a Failure "<what>: <text of errno>". Call it right after the system call that failed.
[[noreturn]] void failWithErrno(const char* what);

}  // namespace cipher
