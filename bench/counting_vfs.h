// An SQLite file system that counts what goes to the disk: on a phone a sync costs more than all the computing.
#pragma once

namespace bench {

/// What SQLite has asked of the disk since countDiskWrites().
struct DiskWrites {
    long long syncs = 0;  ///< of database and journal files, and of their folder when a journal comes or goes
    long long bytes = 0;  ///< into database and journal files
};

/// From now on every database that is opened without naming a file system of its own is counted. The counts are those
/// of the whole process.
const DiskWrites& countDiskWrites();

}  // namespace bench
