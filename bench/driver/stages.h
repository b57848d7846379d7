// What is measured. Each stage makes its accounts, races its contenders, checks that they did the same work, and leaves
// its costs in the workshop's results under the names that table.cpp looks up.
#pragma once

#include "bench/counting_vfs.h"
#include "bench/driver/workshop.h"

namespace bench {

/// Exports and imports of all sizes: floor and project, and at the two largest sizes the peers.
void raceSizes(Workshop& workshop);

/// Exports of accounts whose messages are all of one day.
void raceOneDay(Workshop& workshop);

/// Import of many small conversations.
void raceManyConversations(Workshop& workshop);

/// Encrypted databases against plain ones.
void raceKeyed(Workshop& workshop);

/// The tree's walk with decryption against a copy of its files, and its messages against those of a package.
void raceTree(Workshop& workshop);

/// A whole import of a tree of encrypted message files, its parts one by one, and what copy and insert alone cost.
void raceTreeImport(Workshop& workshop);

/// The export of attachments against a copy of their files.
void raceAttachments(Workshop& workshop);

/// What an import asks of the disk per conversation of 50 messages.
struct ImportWrites {
    double newSyncs = 0;
    double newBytes = 0;
    double existingSyncs = 0;
    double existingBytes = 0;
    double repeatedSyncs = 0;
    double repeatedBytes = 0;
};
ImportWrites countImportWrites(const Workshop& workshop);

}  // namespace bench
