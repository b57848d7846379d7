// A locale with a decimal comma for the life of a scope.
#pragma once

#include <clocale>
#include <cstdlib>
#include <string>

#include "tests/support/temp_dir.h"

namespace test {

class CommaLocale {
public:
    CommaLocale() {
        if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) useOwn();
    }
    ~CommaLocale() {
        (void)std::setlocale(LC_ALL, "C");
        unsetenv("LOCPATH");
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    /// False where the machine has neither the locale nor its definition.
    static bool isSet() { return std::localeconv()->decimal_point == std::string(","); }

private:
    // The machine has not installed the locale; its definition may be there.
    void useOwn() {
        const std::string command = "localedef -i de_DE -f UTF-8 " + dir_.at("de_DE.UTF-8") + " >/dev/null 2>&1";
        if (std::system(command.c_str()) != 0) return;  // NOLINT(cert-env33-c): a fixed command
        setenv("LOCPATH", dir_.path().c_str(), 1);      // NOLINT(concurrency-mt-unsafe)
        (void)std::setlocale(LC_ALL, "de_DE.UTF-8");
    }

    TempDir dir_;
};

}  // namespace test
