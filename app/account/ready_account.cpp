#include "app/account/ready_account.h"

#include <iostream>

#include "app/base/printable.h"

namespace app {

namespace {

void printNew(const char* verb, const std::string& path, const std::string& key) {
    std::cout << verb << " a new "
              << (key.empty() ? "database (not encrypted: no key was given): " : "encrypted database: ")
              << printable(path) << '\n';
}

}  // namespace

void makeAccountReady(const Account& account, const std::string& key) {
    for (const std::string& path : makeMissingParts(account, key))
        printNew("Made", path, key);
}

void tellWhatIsMissing(const Account& account, const std::string& key) {
    for (const std::string& path : account.databases()) {
        if (isFree(path)) printNew("Would make", path, key);
    }
}

}  // namespace app
