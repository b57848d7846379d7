// The messages of a package in memory, found by conversation and id.
#pragma once

#include <map>
#include <vector>

#include "app/package/package_files.h"

namespace app {

class PackageIndex {
public:
    struct PackagedMessage {
        PackageMessage message;
        bool matched = false;  ///< the account has it
    };

    void add(PackageMessage message);

    /// Makes the messages findable; to be called once, after the last add().
    void sort();

    /// The messages with the id of `row` in the conversation of `row`, both as a package holds them.
    [[nodiscard]] std::vector<PackagedMessage*> candidates(const imsdk::st_dbMessageBean& row);

    /// Calls visit(entry, idIsTaken) for each message that nothing matched; idIsTaken says that one with the same id
    /// was.
    template <class Visit>
    void forEachUnmatched(Visit visit) {
        for (const auto& [targetID, entries] : conversations_) {
            for (const PackagedMessage& entry : entries) {
                if (!entry.matched) visit(entry.message, idIsTaken(entries, entry.message));
            }
        }
    }

private:
    using Entries = std::vector<PackagedMessage>;

    [[nodiscard]] static bool idIsTaken(const Entries& entries, const PackageMessage& message);

    std::map<long long, Entries> conversations_;
};

}  // namespace app
