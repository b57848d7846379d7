#include "app/tree/dry_run_tree.h"

#include <filesystem>
#include <utility>

#include "app/base/failure.h"
#include "app/tree/tree_contact_files.h"
#include "app/tree/tree_files.h"

namespace app {
namespace {

namespace fs = std::filesystem;
using chattransfer::Omission;

[[noreturn]] void failToCopy(const std::string& path, const std::error_code& error) {
    throw Failure(
        {0, "The tree cannot be copied for the trial", path, error.message(),
         "the trial needs as much room as the tree without its attachments: set TMPDIR to a folder with more"});
}

// Wherever it is: an import also opens what lies among the attachments under such a name.
bool isOfImport(const std::string& name) {
    return hasRecordEnding(name) || (hasDecryptedEnding(name) && hasRecordEnding(nameWithoutDecrypted(name)));
}

}  // namespace

DryRunTree::DryRunTree(TreePlace real, const std::string& user) : real_(std::move(real)), user_(user) {
    copy_ = {folder_.path(), treeFolderIn(folder_.path(), user), {}};
    std::error_code error;
    if (!fs::create_directories(copy_.root, error)) failToCopy(copy_.root, error);
    const TreeListing listing = listTree(real_.root);
    for (const UnreadableFolder& folder : listing.unreadable)
        leaveOut(folder.name, Omission::folderUnreadable, folder.reason);
    for (const TreeEntry& entry : listing.entries) {
        if (!isOfImport(entry.name)) continue;
        if (entry.kind == TreeEntryKind::file) copyFile(entry.name);
        if (entry.kind == TreeEntryKind::other)
            leaveOut(entry.name, Omission::treeFileUndecryptable, "not a regular file");
    }
}

void DryRunTree::copyFile(const std::string& name) {
    const std::string to = copy_.root + "/" + name;
    std::error_code error;
    fs::create_directories(fs::path(to).parent_path(), error);
    if (!error) fs::copy_file(real_.root + "/" + name, to, error);
    if (error == std::errc::permission_denied) {
        leaveOut(name, Omission::treeFileUndecryptable, error.message());
    } else if (error) {
        failToCopy(real_.root + "/" + name, error);
    }
}

void DryRunTree::leaveOut(const std::string& name, Omission kind, std::string_view detail) {
    notCopied_.push_back(TransferReport::Skipped::of(real_.root + "/" + name, kind, detail));
}

void DryRunTree::settle(TreeImportFiles& files, TransferReport& report) const {
    for (const TransferReport::Skipped& one : notCopied_) {
        files.report.add(one);
        report.add(one);
        ++files.notDecrypted;
    }
    if (files.contacts.size() < 2) return;
    std::vector<TreeContactFile> named;
    for (const std::string& path : files.contacts) {
        const fs::path name = fs::absolute(path).lexically_normal().lexically_relative(copy_.root);
        named.push_back({nameWithoutDecrypted(name.string()), {}});
    }
    const TreeContactFile* counts = lastListedFile({real_.root, user_}, named);
    const std::string& chosen = files.contacts[static_cast<std::size_t>(counts - named.data())];
    for (const std::string& path : files.contacts) {
        std::error_code error;
        if (path != chosen && !fs::copy_file(chosen, path, fs::copy_options::overwrite_existing, error))
            failToCopy(path, error);
    }
}

}  // namespace app
