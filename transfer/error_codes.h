// The result codes of the transfer object's operations: 0, or one of these. They are part of the interface to the host
// and are passed up unchanged from operation to operation.
//
// Threads: anything here may be used on several threads at once.
#pragma once

namespace chattransfer {

enum ErrorCode : unsigned int {
    kSuccess = 0,
    /// The package root exists already (or its path does not fit): the export is refused, nothing is written.
    kPackageExists = 0xff00001e,
    /// A database could not be opened, a table could not be created, or a write could not be made durable.
    kDatabaseFailed = 0xff00001f,
    /// The database lists no table, or lacks the recent contacts' one.
    kNoTables = 0xff000020,
    /// The recent-contact file is there but is not JSON.
    kNotJson = 0xff000021,
    /// A package or tree, or a file of it, is missing.
    kMissing = 0xff000022,
    /// The JSON of a message file could not be built.
    kJsonFailed = 0xff000023,
    /// "version" is missing or differs from the expected one.
    kWrongVersion = 0xff000024,
};

/// The meaning of a code in one English clause, for example "a database could not be opened or written"; "an unknown
/// result" for other numbers.
const char* meaningOf(unsigned int code);

/// The code as the int that some operations return: the same 32 bits.
inline int asInt(ErrorCode code) {
    return static_cast<int>(static_cast<unsigned int>(code));
}

}  // namespace chattransfer
