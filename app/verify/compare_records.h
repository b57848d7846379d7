// Holds a record of an account against its counterpart in a package, field by field.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "app/package/package_files.h"
#include "app/verify/verify_report.h"
#include "transfer/records.h"

namespace app {

/// Which way the package went with respect to the account; that decides which rules can explain a difference.
enum class Direction {
    exported,  ///< the package was exported from the account
    imported,  ///< the package was imported into the account
    both,      ///< either
};

struct Comparison {
    std::vector<std::string> differing;  ///< names of the fields that no rule explains
    std::set<Rule> rules;                ///< rules that explain others
};

[[nodiscard]] Comparison compareMessages(const imsdk::st_dbMessageBean& row, const PackageMessage& message,
                                         Direction direction);

[[nodiscard]] Comparison compareContacts(const imsdk::st_dbReContactBean& row, const imsdk::st_dbReContactBean& contact,
                                         Direction direction);

/// `id` as a package holds it: numbers above 2^53 lose their low bits.
[[nodiscard]] long long asPackaged(long long id);

}  // namespace app
