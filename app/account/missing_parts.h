// What an account lacks: folders, and databases.
#pragma once

#include <string>
#include <vector>

#include "app/places/account_place.h"

namespace app {

/// Makes what the account lacks: its folders, for their owner only, and its databases, encrypted when there is a key.
/// What is there stays as it is. Returns the paths of the databases made. Throws Failure.
[[nodiscard]] std::vector<std::string> makeMissingParts(const Account& account, const std::string& key);

/// The same, with a printed line for each database made, so that nobody takes a new database for the one that the
/// client uses. Throws Failure.
void makeAccountReady(const Account& account, const std::string& key);

/// Prints which databases that would make, and makes nothing.
void tellWhatIsMissing(const Account& account, const std::string& key);

}  // namespace app
