#include "app/ready_account.h"

#include <iostream>

#include "app/printable.h"

namespace app {

void makeAccountReady(const Account& account, const std::string& key) {
    for (const std::string& path : makeMissingParts(account, key)) {
        std::cout << "Made a new "
                  << (key.empty() ? "database (not encrypted: no key was given): " : "encrypted database: ")
                  << printable(path) << '\n';
    }
}

}  // namespace app
