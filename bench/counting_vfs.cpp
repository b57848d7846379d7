#include "bench/counting_vfs.h"

#include <sqlite3.h>

#include <cstddef>
#include <stdexcept>

namespace bench {
namespace {

DiskWrites counted;
sqlite3_vfs* inner = nullptr;

// SQLite allocates this, followed by the inner file system's own file object.
struct CountedFile {
    sqlite3_file base;
    bool folderPending;  // the first sync of a new journal also syncs its folder

    sqlite3_file* file() { return reinterpret_cast<sqlite3_file*>(reinterpret_cast<std::byte*>(this) + room()); }
    static constexpr std::size_t room() { return (sizeof(CountedFile) + 15) / 16 * 16; }
};

CountedFile& counting(sqlite3_file* file) {
    return *reinterpret_cast<CountedFile*>(file);
}

// Hands the call on to the inner file.
template <auto Method, class... Arguments>
int forward(sqlite3_file* file, Arguments... arguments) {
    sqlite3_file* real = counting(file).file();
    return (real->pMethods->*Method)(real, arguments...);
}

int writeCounted(sqlite3_file* file, const void* bytes, int size, sqlite3_int64 offset) {
    counted.bytes += size;
    return forward<&sqlite3_io_methods::xWrite>(file, bytes, size, offset);
}

int syncCounted(sqlite3_file* file, int flags) {
    CountedFile& own = counting(file);
    counted.syncs += own.folderPending ? 2 : 1;
    own.folderPending = false;
    return forward<&sqlite3_io_methods::xSync>(file, flags);
}

// Version 1: no shared memory and no memory mapping. Databases in the default journal mode need neither.
constexpr sqlite3_io_methods kMethods = [] {
    sqlite3_io_methods methods{};
    methods.iVersion = 1;
    methods.xClose = forward<&sqlite3_io_methods::xClose>;
    methods.xRead = forward<&sqlite3_io_methods::xRead, void*, int, sqlite3_int64>;
    methods.xWrite = writeCounted;
    methods.xTruncate = forward<&sqlite3_io_methods::xTruncate, sqlite3_int64>;
    methods.xSync = syncCounted;
    methods.xFileSize = forward<&sqlite3_io_methods::xFileSize, sqlite3_int64*>;
    methods.xLock = forward<&sqlite3_io_methods::xLock, int>;
    methods.xUnlock = forward<&sqlite3_io_methods::xUnlock, int>;
    methods.xCheckReservedLock = forward<&sqlite3_io_methods::xCheckReservedLock, int*>;
    methods.xFileControl = forward<&sqlite3_io_methods::xFileControl, int, void*>;
    methods.xSectorSize = forward<&sqlite3_io_methods::xSectorSize>;
    methods.xDeviceCharacteristics = forward<&sqlite3_io_methods::xDeviceCharacteristics>;
    return methods;
}();

int openCounted(sqlite3_vfs* /*vfs*/, sqlite3_filename name, sqlite3_file* file, int flags, int* outFlags) {
    CountedFile& own = counting(file);
    const bool journal = (flags & (SQLITE_OPEN_MAIN_JOURNAL | SQLITE_OPEN_SUPER_JOURNAL)) != 0;
    own.folderPending = journal && (flags & SQLITE_OPEN_CREATE) != 0;
    const int code = inner->xOpen(inner, name, own.file(), flags, outFlags);
    // Without methods SQLite does not close the file.
    own.base.pMethods = own.file()->pMethods != nullptr ? &kMethods : nullptr;
    return code;
}

int deleteCounted(sqlite3_vfs* /*vfs*/, const char* name, int syncFolder) {
    if (syncFolder != 0) ++counted.syncs;
    return inner->xDelete(inner, name, syncFolder);
}

}  // namespace

const DiskWrites& countDiskWrites() {
    static sqlite3_vfs vfs{};
    if (inner != nullptr) return counted;
    sqlite3_initialize();
    inner = sqlite3_vfs_find(nullptr);
    if (inner == nullptr) throw std::runtime_error("SQLite has no file system");
    vfs = *inner;  // the other calls take any file system object of this layout
    vfs.szOsFile = inner->szOsFile + static_cast<int>(CountedFile::room());
    vfs.zName = "counting";
    vfs.pNext = nullptr;
    vfs.xOpen = openCounted;
    vfs.xDelete = deleteCounted;
    if (sqlite3_vfs_register(&vfs, 1) != SQLITE_OK) throw std::runtime_error("the counting file system was refused");
    return counted;
}

}  // namespace bench
