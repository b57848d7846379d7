#pragma once

#include <cstddef>
#include <string>

#include "host/files/file_handle.h"
#include "host/files/new_file.h"

/// The two files that a conversion has open: those of the file layer, with the reasons of CAES for what fails.
namespace cipher {

/// A regular file that is read from beginning to end.
class InputFile {
public:
    /// Opens the file without following a symbolic link in the last component and without ever waiting for a FIFO's
    /// other end. Throws Failure "cannot open input: ..." or "input is not a regular file".
    explicit InputFile(const char* path);

    /// Reads the next `size` bytes, fewer only at the end of the file, and returns how many. Throws Failure
    /// "cannot read input: ...".
    [[nodiscard]] std::size_t read(unsigned char* bytes, std::size_t size);

private:
    tools::detail::FileHandle file_;
};

/// A file that stands under its name only once it is complete. Until then it grows, mode 0600, under a temporary name
/// in the same folder; that file is removed unless commit() succeeds.
class OutputFile {
public:
    /// Creates the temporary file. Throws Failure "cannot write output: ...", for one when the folder does not exist.
    explicit OutputFile(const std::string& path);

    /// Appends `size` bytes. Throws Failure "cannot write output: ..." when not all of them could be written.
    void write(const unsigned char* bytes, std::size_t size);

    /// Flushes the file to the disk and gives it its name, replacing what stood there. Nothing may be written
    /// afterwards. Throws Failure "cannot write output: ...": the name then still shows what stood there before.
    void commit();

private:
    tools::detail::FileHandle folder_;
    tools::detail::NewFile file_;
};

}  // namespace cipher
