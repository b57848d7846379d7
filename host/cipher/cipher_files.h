#pragma once

#include <cstddef>
#include <string>

/// The two files a conversion has open. Every descriptor is closed by scope.
namespace cipher {

/// Owns one file descriptor, or -1 for none.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor();
    Descriptor(const Descriptor&) = delete;
    Descriptor(Descriptor&&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;

    /// The descriptor, still owned by this object.
    [[nodiscard]] int get() const { return fd_; }

    /// Gives the descriptor up; the caller has to close it.
    int release();

private:
    int fd_;
};

/// A regular file that is read from beginning to end.
class InputFile {
public:
    /// Opens the file without following a symbolic link in the last component and without ever waiting for a FIFO's
    /// other end. Throws Failure "cannot open input: ..." or "input is not a regular file".
    explicit InputFile(const char* path);

    /// Reads the next `size` bytes, fewer only at the end of the file, and returns how many. Throws Failure
    /// "cannot read input: ...".
    std::size_t read(unsigned char* bytes, std::size_t size);

private:
    Descriptor fd_;
};

/// A file that stands under its name only once it is complete. Until then it grows, mode 0600, under a hidden name in
/// the same folder; that file is removed unless commit() succeeds.
class OutputFile {
public:
    /// Creates the hidden file. Throws Failure "cannot write output: ...", for one when the folder does not exist.
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile(OutputFile&&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    OutputFile& operator=(OutputFile&&) = delete;

    /// Appends `size` bytes. Throws Failure "cannot write output: ..." when not all of them could be written.
    void write(const unsigned char* bytes, std::size_t size);

    /// Flushes the file to the disk and gives it its name, replacing what stood there. Nothing may be written
    /// afterwards. Throws Failure "cannot write output: ...": the name then still shows what stood there before.
    void commit();

private:
    Descriptor folder_;
    std::string name_;
    std::string hiddenName_;
    Descriptor fd_;
    bool committed_ = false;
};

}  // namespace cipher
