#include "app/verify/package_index.h"

#include <algorithm>
#include <utility>

#include "app/verify/compare_records.h"

namespace app {
namespace {

struct ById {
    static long long idOf(const PackageIndex::PackagedMessage& entry) { return asPackaged(entry.message.record.msgID); }
    bool operator()(const PackageIndex::PackagedMessage& a, const PackageIndex::PackagedMessage& b) const {
        return idOf(a) < idOf(b);
    }
    bool operator()(const PackageIndex::PackagedMessage& a, long long id) const { return idOf(a) < id; }
    bool operator()(long long id, const PackageIndex::PackagedMessage& b) const { return id < idOf(b); }
};

}  // namespace

void PackageIndex::add(PackageMessage message) {
    Entries& entries = conversations_[asPackaged(message.record.targetID)];
    entries.push_back({std::move(message)});
}

void PackageIndex::sort() {
    for (auto& [targetID, entries] : conversations_)
        std::stable_sort(entries.begin(), entries.end(), ById());
}

std::vector<PackageIndex::PackagedMessage*> PackageIndex::candidates(const imsdk::st_dbMessageBean& row) {
    std::vector<PackagedMessage*> found;
    const auto conversation = conversations_.find(asPackaged(row.targetID));
    if (conversation == conversations_.end()) return found;
    Entries& entries = conversation->second;
    const auto [first, last] = std::equal_range(entries.begin(), entries.end(), asPackaged(row.msgID), ById());
    for (auto entry = first; entry != last; ++entry)
        found.push_back(&*entry);
    return found;
}

bool PackageIndex::idIsTaken(const Entries& entries, const PackageMessage& message) {
    const auto [first, last] =
        std::equal_range(entries.begin(), entries.end(), asPackaged(message.record.msgID), ById());
    return std::any_of(first, last, [](const PackagedMessage& entry) { return entry.matched; });
}

}  // namespace app
