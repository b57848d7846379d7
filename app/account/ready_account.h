// Making an account that an import can write to, and saying so.
#pragma once

#include <string>

#include "app/account/account.h"

namespace app {

/// Makes what the account lacks (makeMissingParts) and prints a line for each database made, so that nobody takes a new
/// database for the one that the client uses. Throws Failure.
void makeAccountReady(const Account& account, const std::string& key);

/// Prints which databases that would make, and makes nothing.
void tellWhatIsMissing(const Account& account, const std::string& key);

}  // namespace app
