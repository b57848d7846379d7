#include "app/commands/view_source.h"

#include <map>
#include <string_view>
#include <utility>

#include "app/account/key_options.h"
#include "app/attachments/package_file_names.h"
#include "app/attachments/tree_file_names.h"
#include "app/base/failure.h"
#include "app/base/interruption.h"
#include "app/base/units.h"
#include "app/package/package_files.h"
#include "app/tree/tree_contact_files.h"
#include "transfer/format/account_folders.h"
#include "transfer/format/package_format.h"
#include "transfer/format/tree_format.h"
#include "transfer/tables/recent_contact_table.h"

namespace app {
namespace {

view::MediaKind kindOf(std::string_view accountFolder) {
    if (accountFolder == chattransfer::kImageFolder) return view::MediaKind::picture;
    if (accountFolder == chattransfer::kAudioFolder) return view::MediaKind::voice;
    return accountFolder == chattransfer::kVideoFolder ? view::MediaKind::video : view::MediaKind::file;
}

view::NamedFile namedFile(AttachmentFile file) {
    return {kindOf(file.folder), file.role == AttachmentRole::preview, std::move(file.source),
            std::move(file.accountName)};
}

std::vector<view::NamedFile> filesOfPackageMessage(const std::string& body, int type) {
    std::vector<view::NamedFile> files;
    forEachPackageFile(body, type, [&files](AttachmentFile file) { files.push_back(namedFile(std::move(file))); });
    return files;
}

std::vector<view::NamedFile> filesOfTreeMessage(const std::string& body, int type) {
    std::vector<view::NamedFile> files;
    forEachTreeFile(body, type, [&files](AttachmentFile file) { files.push_back(namedFile(std::move(file))); });
    return files;
}

// Sorts messages into their conversations as they come; reading ends where Ctrl-C was pressed.
class HistoryMaker {
public:
    explicit HistoryMaker(view::History& history) : history_(history) {}

    void add(long long conversation, imsdk::st_dbMessageBean record) {
        leaveIfInterrupted();
        const auto [place, isNew] = places_.emplace(conversation, history_.conversations.size());
        if (isNew) history_.conversations.push_back({conversation, {}});
        view::Message message;
        message.time = record.time_;
        message.id = record.msgID;
        message.sender = record.fromeUserID;
        message.day = {record.year_, record.mon, record.day_};
        message.type = record.msgType;
        message.body = std::move(record.body);
        history_.conversations[place->second].messages.push_back(std::move(message));
    }

    void addContacts(const std::vector<imsdk::st_dbReContactBean>& contacts) {
        for (const imsdk::st_dbReContactBean& contact : contacts) {
            const bool pinned = (contact.top & chattransfer::kPinnedBit) != 0;
            history_.contacts[contact.targetID] = {contact.name, contact.lastMsg, pinned};
        }
    }

private:
    view::History& history_;
    std::map<long long, std::size_t> places_;
};

// Pages of nothing would look like a history in which nobody ever spoke.
void requireSomething(const ViewSource& source) {
    const view::History& history = source.history;
    if (source.leftOut.skipped.empty() || !history.conversations.empty() || !history.contacts.empty()) return;
    const TransferReport::Skipped& first = source.leftOut.skipped.front();
    throw Failure({0, "Nothing can be read, and no page was written", source.root, first.what + ": " + first.reason,
                   "check --from, and the key if it is a tree"});
}

void noteDamage(const PackageFacts& facts, TransferReport& leftOut) {
    for (const TransferReport::Skipped& file : facts.unreadable)
        leftOut.add(file);
    if (facts.filesBehindGap > 0) {
        leftOut.skip(counted(facts.filesBehindGap, "message file", "message files"),
                     chattransfer::Omission::messageFilesBehindGap);
    }
}

}  // namespace

ViewSource readPackageForView(const PackagePlace& place, const std::string& user) {
    ViewSource source{
        place.root(), {}, tools::ConfinedFolder(place.parent, place.attachments.substr(place.parent.size())), {}, 0};
    source.history.user = user;
    source.history.filesOf = filesOfPackageMessage;
    HistoryMaker maker(source.history);
    const PackageFacts facts = readPackage(
        place, [&maker](PackageMessage message) { maker.add(message.record.targetID, std::move(message.record)); });
    maker.addContacts(facts.contacts);
    noteDamage(facts, source.leftOut);
    requireSomething(source);
    return source;
}

ViewSource readTreeForView(const TreeSource& tree, const std::string& key) {
    ViewSource source{
        tree.root, {}, tools::ConfinedFolder(tree.root + "/", chattransfer::kTreeAttachmentsFolder), {}, 0};
    source.history.user = tree.user;
    source.history.filesOf = filesOfTreeMessage;
    HistoryMaker maker(source.history);
    const TreeFacts facts = readTree(
        tree, key, [&maker](TreeMessage message) { maker.add(message.conversation, std::move(message.record)); });
    if (facts.locked > 0) {
        throw Failure({0, "The tree is encrypted, and no page was written", tree.root,
                       counted(facts.locked, "file needs", "files need") + " the key, and none was given",
                       std::string("give it with ") + kWaysToGiveAKey});
    }
    if (const TreeContactFile* file = lastListedFile(tree, facts.contactFiles)) maker.addContacts(file->contacts);
    for (const TransferReport::Skipped& file : facts.unreadable)
        source.leftOut.add(file);
    source.notShown = static_cast<long long>(facts.notes.size()) + static_cast<long long>(facts.rooms.size());
    requireSomething(source);
    return source;
}

}  // namespace app
