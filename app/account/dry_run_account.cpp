#include "app/account/dry_run_account.h"

#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "app/account/closed_database.h"
#include "app/account/missing_parts.h"
#include "app/base/failure.h"
#include "host/dbUtils.h"
#include "transfer/format/account_folders.h"

namespace app {
namespace {

[[noreturn]] void failToCopy(const std::string& path, const std::string& reason) {
    throw Failure({0, "The account cannot be copied for the trial", path, reason,
                   "the trial needs as much room as the databases: set TMPDIR to a folder with more"});
}

}  // namespace

DryRunAccount::DryRunAccount(const Account& real, const std::string& key) : copy_(folder_.path()) {
    linkFolders(real);
    static_cast<void>(makeMissingParts(copy_, key));  // all of them
    const std::vector<std::string> copies = copy_.databases();
    const std::vector<std::string> originals = real.databases();
    for (std::size_t i = 0; i < copies.size(); ++i)
        copyDatabase(originals[i], copies[i], key);
}

void DryRunAccount::copyDatabase(const std::string& from, const std::string& to, const std::string& key) const {
    if (isFree(from)) return;
    const char* keyText = key.empty() ? nullptr : key.c_str();
    imsdk::dbUtils source;
    if (source.open(from.c_str(), keyText) == 0) throw Failure(wordsForClosed(source, from, !key.empty()));
    imsdk::dbUtils target;
    if (target.open(to.c_str(), keyText) == 0 || source.copyTo(target) == 0) failToCopy(from, target.lastError());
}

// Attachments are only looked at in a dry run.
void DryRunAccount::linkFolders(const Account& real) const {
    for (const char* folder : {chattransfer::kAudioFolder, chattransfer::kImageFolder, chattransfer::kFileFolder,
                               chattransfer::kVideoFolder}) {
        std::string name = folder;
        name.pop_back();  // its "/"
        std::error_code ignored;
        if (!std::filesystem::is_directory(real.root() + name, ignored)) continue;
        if (symlink((real.root() + name).c_str(), (copy_.root() + name).c_str()) != 0)
            failToCopy(real.root() + name, systemWords(errno));
    }
}

}  // namespace app
