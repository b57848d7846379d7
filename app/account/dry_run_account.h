// An account to try an import on: a copy of the databases of a real one, and its attachment folders as they are.
#pragma once

#include <string>

#include "app/places/account_place.h"
#include "app/places/private_folder.h"

namespace app {

/// Lives in a private folder, and goes with it. The databases stay encrypted when they are. Throws Failure.
class DryRunAccount {
public:
    /// Copies the databases that `real` has; what it lacks is made in the copy only.
    DryRunAccount(const Account& real, const std::string& key);

    [[nodiscard]] const Account& account() const { return copy_; }

private:
    void copyDatabase(const std::string& from, const std::string& to, const std::string& key) const;
    void linkFolders(const Account& real) const;

    PrivateFolder folder_;
    Account copy_;
};

}  // namespace app
