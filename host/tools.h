// File, path, text and clock utilities. Paths are byte strings as the operating system takes them. Nothing here throws
// on a failure of the file system; where a result is an int, 0 means success unless the function says otherwise.
//
// Threads: every function may be called on several threads at once. Of two that write the same path at the same time,
// one wins as a whole. Process-wide is only the number that tells apart the temporary names of one process.
#pragma once

#include <string>
#include <vector>

namespace tools {

/// True when a file, a directory or anything else exists at `path` (symbolic links are followed; a link that leads
/// nowhere does not exist). False for null.
bool fileExist(const char* path);

/// fileExist() for a string: 1 or 0.
int isFileExsit(const std::string& path);

enum class Presence {
    absent,   ///< nothing can be at the path: it, or a folder on the way, does not exist
    present,  ///< what fileExist() is true for
    unknown,  ///< nobody can look: an input/output error, a folder without permission
};

/// fileExist() for callers to whom a failure of the machine is no answer: what may be there must not be taken for lost.
Presence presenceOf(const std::string& path);

/// Creates the directory `path` and every missing parent, readable by their owner only (mode 0700): they hold private
/// messages. 0 when the directory exists afterwards, -1 otherwise.
int createDir(const char* path);

/// Removes the directory `path` and all that it holds. Symbolic links are removed, never followed. 0 when removed; -1
/// when `path` is null, missing or not a directory, or when something in it could not be removed.
int del_dir(const char* path);

/// Copies the regular file `from` to `to`, replacing an existing file. The bytes go to a temporary file beside `to`,
/// are flushed to the disk and renamed, so `to` is whole or untouched; it is readable by its owner only (mode 0600). 0
/// on success; -1 when `from` is not a readable regular file (directories, FIFOs and sockets are refused without
/// blocking), when `to` is a directory or lies in a missing one, or when writing fails.
int copyFile(const char* from, const char* to);

/// Moves the regular file `from` to `to`, replacing an existing file, also across file systems (then by copyFile() and
/// removal of the source). 0 on success; -1 otherwise, and `from` is still there.
int moveFile(const char* from, const char* to);

/// Writes the text after the last "/" of `path` (all of it when there is none; nothing when it ends in "/") into
/// `name`, NUL-terminated. `name` must have room for it: prefer the string form for texts of unknown length.
void getNameFromPath(char* path, char* name);
/// The same into a string.
void getNameFromPath(const std::string& path, std::string& name);

/// A file name made from a URL or path: equal URLs give equal names, different URLs different ones, also on a file
/// system that ignores case. The name is "<stem>_<hash>.<extension>": up to 40 letters, digits, "_" and "-" of the last
/// path component (without query and fragment; "file" when there is nothing readable), 40 hexadecimal digits of the
/// SHA-256 of the whole URL, and the component's own extension, lower-cased, if it is 1 to 10 letters and digits. The
/// endings of a transfer's own files (mg, ct, nt, rm, decrypt) are dropped. ASCII, at most 92 bytes, valid on every
/// file system. Any bytes are allowed in `url`. With `unique` false the hash is left out: different URLs may then share
/// a name, and names of devices (CON, NUL, COM1) get "file-" in front. Throws std::runtime_error when the crypto
/// library cannot hash.
std::string getUniqueNameByUrl(const std::string& url, bool unique);

/// The numbers in decimal, joined by `separator` (null counts as empty); an empty text for no numbers.
std::string int64_To_String(const std::vector<long long>& numbers, const char* separator);

/// The numbers of a text joined by `separator`, in order. Pieces that do not begin with a number (empty ones, words)
/// are left out; of a piece such as "7_1" the leading number counts. Numbers outside 64 bits become the nearest limit.
/// With a null or empty separator the text is one piece.
std::vector<long long> string_To_Vec_Int64(const std::string& text, const char* separator);

/// The leading decimal number of `digits` (optional sign); 0 for null and for texts without one; the nearest limit for
/// numbers outside 64 bits.
long long atoint64(const char* digits);

/// A monotonic clock in milliseconds; only differences of two readings mean anything.
unsigned long long get_Startmsec();

}  // namespace tools
