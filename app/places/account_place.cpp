#include "app/places/account_place.h"

#include "app/base/paths.h"
#include "host/files/file_status.h"
#include "transfer/format/account_folders.h"

namespace app {

Account::Account(const std::string& folder) : root_(resolvedPath(folder).string()) {}

std::string Account::database(Database which) const {
    return root_ + (which == Database::main ? chattransfer::kMainDatabase : chattransfer::kBackDatabase);
}

std::string Account::pluginDatabase() const {
    return root_ + chattransfer::kPluginDatabase;
}

std::vector<std::string> Account::databases() const {
    return {database(Database::main), database(Database::back), pluginDatabase()};
}

bool isFree(const std::string& database) {
    return tools::statusOf(database).kind == tools::FileKind::none;
}

}  // namespace app
