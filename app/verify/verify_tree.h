// `chat-transfer verify` for a tree.
#pragma once

#include "app/places/account_place.h"
#include "app/tree/tree_contents.h"
#include "app/verify/verify_report.h"
#include "transfer/dbTrans.h"

namespace app {

/// Holds the tree against the account, whose key `transfer` has, and prints how much was compared.
[[nodiscard]] VerifyReport verifyTree(const TreeSource& source, const Account& account, Database database,
                                      dbTrans& transfer, RunReport& run);

}  // namespace app
