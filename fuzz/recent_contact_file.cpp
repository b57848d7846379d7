// A recent-contact file: what is taken survives writing and reading again.
#include "fuzz/property.h"
#include "fuzz/round_trip.h"
#include "fuzz/sandbox.h"
#include "transfer/tables/recent_contact_table.h"

namespace {

using fuzz::require;
using imsdk::st_dbReContactBean;

bool sameContact(const st_dbReContactBean& before, const st_dbReContactBean& after) {
    return fuzz::survives(before.targetID, after.targetID) && fuzz::survives(before.name, after.name) &&
           fuzz::survives(before.lastMsgid, after.lastMsgid) && fuzz::survives(before.time, after.time) &&
           before.type == after.type && before.top == after.top && before.msgType == after.msgType &&
           before.activeType == after.activeType && fuzz::survives(before.wherefrom, after.wherefrom) &&
           fuzz::survives(before.lastMsg, after.lastMsg) && fuzz::survives(before.msgProp, after.msgProp) &&
           before.securityLevel == after.securityLevel;
}

// Older clients wrote 1 for a pinned conversation; reading turns it into the pin of today.
bool isStable(const st_dbReContactBean& contact) {
    return contact.top != 1;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Sandbox sandbox;
    std::string path = sandbox.packageMessages() + "recontact.mg";
    fuzz::Sandbox::write(path, std::string(reinterpret_cast<const char*>(data), size));
    dbTrans transfer;
    sandbox.enter(transfer);
    transfer.msgFileDir = sandbox.packageMessages();
    if (transfer.rdRecontactFromFile(path) != chattransfer::kSuccess) return 0;
    const std::vector<st_dbReContactBean> first = transfer.reContacts;
    transfer.wtRecontactToFile();
    require(transfer.rdRecontactFromFile(path) == chattransfer::kSuccess, "what is written can be read");
    require(first.size() == transfer.reContacts.size(), "every contact survives");
    for (std::size_t i = 0; i < first.size(); ++i) {
        require(isStable(first[i]), "the pin of older clients is read as a pin");
        require(sameContact(first[i], transfer.reContacts[i]), "the contact survives");
    }
    return 0;
}
