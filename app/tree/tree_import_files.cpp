#include "app/tree/tree_import_files.h"

#include <algorithm>
#include <iostream>
#include <set>

#include "app/account/key_options.h"
#include "app/base/failure.h"
#include "app/base/paths.h"
#include "app/base/units.h"
#include "app/report/left_out.h"
#include "app/report/refused_records.h"
#include "app/tree/tree_files.h"
#include "host/files/file_status.h"
#include "host/files/temporary_name.h"
#include "host/json/json_owner.h"
#include "transfer/format/json_fields.h"
#include "transfer/format/package_format.h"
#include "transfer/format/tree_format.h"

namespace app {
namespace {

using chattransfer::Omission;
using chattransfer::OmissionCause;
using chattransfer::OmittedThing;

// A decrypted file that an import could not read, or that says nothing that it understands.
bool isNotUnderstood(Omission kind) {
    const OmittedThing thing = chattransfer::thingOf(kind);
    const bool isFile = thing == OmittedThing::treeFile || thing == OmittedThing::contactFile;
    return isFile && chattransfer::causeOf(kind) != OmissionCause::undecryptable;
}

// Every kind of file is searched for in the same folders: they are named once.
void noteUnreadable(const TransferReport& found, std::set<std::string>& named, TreeImportFiles& files) {
    for (const TransferReport::Skipped& skipped : found.skipped) {
        if (!named.insert(skipped.what).second) continue;
        files.report.add(skipped);
        ++files.notDecrypted;
    }
    const long long unnamed = found.skippedCount - static_cast<long long>(found.skipped.size());
    files.report.skippedCount += unnamed;
    files.notDecrypted += unnamed;
}

[[noreturn]] void failOnAll(const TreeImportFiles& files, const std::string& root, const GivenFolder& given) {
    const TransferReport report = asGiven(files.report, given);
    const TransferReport::Skipped& first = report.skipped.front();
    printLeftOut(report, std::cerr);
    throw Failure({0,
                   "None of the tree's files can be read (" + counted(files.notDecrypted, "file", "files") +
                       "); nothing was made or changed",
                   given.nameOf(root), first.what + ": " + first.reason,
                   std::string("check the key: give the one that the tree was encrypted with, by ") + kWaysToGiveAKey});
}

void removeUnless(bool doubt, const std::vector<std::string>& paths, const std::set<std::string>& skipped) {
    if (doubt) return;
    for (const std::string& path : paths) {
        if (skipped.count(path) == 0) static_cast<void>(tools::removeFile(path));
    }
}

}  // namespace

std::vector<std::string> TreeImportFiles::all() const {
    std::vector<std::string> paths = messages;
    for (const std::vector<std::string>* more : {&contacts, &notes, &rooms})
        paths.insert(paths.end(), more->begin(), more->end());
    return paths;
}

long long TreeImportFiles::conversations(dbTrans& transfer) const {
    std::set<long long> found;
    for (std::string path : messages) {
        const long long conversation = transfer.getTargetIDFromePath(path);
        if (conversation != -1) found.insert(conversation);
    }
    return static_cast<long long>(found.size());
}

TreeImportFiles decryptFiles(dbTrans& transfer, TreeKinds kinds, const GivenFolder& given) {
    const std::string root = chattransfer::treeRoot(transfer.backupPath, transfer.packageSubDir);
    TreeImportFiles files;
    std::set<std::string> named;
    const auto decrypt = [&](const char* extension, std::vector<std::string>& paths) {
        transfer.report = {};
        transfer.getfiles(root, paths, extension);
        noteUnreadable(transfer.report, named, files);
    };
    decrypt(chattransfer::kMessageExtension, files.messages);
    if (kinds == TreeKinds::all) {
        decrypt(chattransfer::kContactExtension, files.contacts);
        decrypt(chattransfer::kNoteExtension, files.notes);
        decrypt(chattransfer::kRoomExtension, files.rooms);
    }
    transfer.report = {};
    if (files.notDecrypted > 0 && files.all().empty()) failOnAll(files, root, given);
    return files;
}

void requireTreeVersion(const TreeImportFiles& files, const dbTrans& transfer, const GivenFolder& given) {
    if (files.messages.empty()) return;
    const std::string& path = files.messages.front();
    const tools::JsonDocument document(json_parse_file_no_link(path.c_str()));
    const JSON_Object* file = json_value_get_object(document.get());
    if (file == nullptr || chattransfer::hasVersion(file, transfer.packageVersion)) return;
    const char* version = json_object_get_string(file, chattransfer::kVersionKey);
    const std::string stated = version == nullptr ? "none" : "\"" + std::string(version) + "\"";
    throw Failure({chattransfer::kWrongVersion, "The tree has another version; nothing was imported",
                   given.nameOf(path),
                   "this import expects \"" + transfer.packageVersion + "\", the file says " + stated,
                   "if the tree is what you want, give its version with --package-version"});
}

long long countNotParsed(const TransferReport& report) {
    return std::count_if(report.skipped.begin(), report.skipped.end(),
                         [](const TransferReport::Skipped& skipped) { return isNotUnderstood(skipped.kind); });
}

void removeImported(const dbTrans& transfer, const TreeImportFiles& files) {
    const TransferReport& report = transfer.report;
    if (report.skippedCount > static_cast<long long>(TransferReport::kMostSkipped)) return;
    std::set<std::string> skipped;
    for (const TransferReport::Skipped& one : report.skipped)
        skipped.insert(one.what);
    const bool attachmentsLeft = report.attachmentsFailed > 0;
    removeUnless(attachmentsLeft || report.messagesRefused > 0, files.messages, skipped);
    // Of several contact files only the last one counts.
    removeUnless(refusedContacts(transfer) > 0 || files.contacts.size() > 1, files.contacts, skipped);
    removeUnless(attachmentsLeft || refusedNotes(transfer) > 0, files.notes, skipped);
    removeUnless(refusedRooms(transfer) > 0, files.rooms, skipped);
}

void removeLeftovers(const std::string& root) {
    for (const TreeEntry& entry : listTree(root).entries) {
        if (entry.kind == TreeEntryKind::file && tools::isTemporaryName(lastComponent(entry.name)))
            static_cast<void>(tools::removeFile(root + "/" + entry.name));  // the next import tries again
    }
}

}  // namespace app
