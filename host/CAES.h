#pragma once

#include <memory>

/// Encrypts and decrypts single files under a key text typed by the user, for chat histories that leave the device.
///
/// The container is authenticated: a wrong key, a flipped bit, a cut, extended or rearranged file is noticed, and
/// nothing appears under the output name unless every byte of it has been verified. docs/formats/cipher-container.md
/// describes the bytes.
///
/// One object serves one file at a time and is cheap to make. The slow derivation of a key from the key text is
/// remembered for the whole process, so a tree of files pays for it once.
///
/// Threads: an object belongs to one thread at a time; other objects may work on other threads. What the process
/// remembers has a lock: threads that ask for one key derive it once, and the others wait for it.
class CAES {
public:
    CAES();
    ~CAES();
    CAES(const CAES&) = delete;
    CAES(CAES&&) = delete;
    CAES& operator=(const CAES&) = delete;
    CAES& operator=(CAES&&) = delete;

    /// Encrypts (encrypt is true) or decrypts (encrypt is false) the file `input` into the file `output`.
    ///
    /// key    NUL-terminated key text, 1 to 65,536 bytes, used byte for byte: UTF-8 is not normalised.
    /// input  NUL-terminated path of a regular file. It is only read. A symbolic link as the last component, a
    ///        folder, a FIFO, a socket or a device is refused without blocking.
    /// output NUL-terminated path. Its folder has to exist. An existing file (or a symbolic link itself) of that
    ///        name is replaced on success and kept as it was on failure. The new file has mode 0600. It may be the
    ///        input's own path: the file is then replaced by its encrypted or decrypted form.
    /// error  256 bytes, zero-filled by the caller, or null. On failure it holds the reason in English, NUL-terminated
    ///        and cut to fit; on success it is left alone. The reason names neither paths nor the key.
    ///
    /// Returns 0 when the whole output was written, flushed to the disk and stands under its name; 1 on any failure:
    ///   "no key", "key text too long", "no input path", "no output path";
    ///   "cannot open input: ...", "input is not a regular file", "cannot read input: ...";
    ///   "not an encrypted file", "written by a newer version ...", "damaged header ..." (decryption);
    ///   "wrong key, or the file is damaged, cut or extended" (decryption, the first chunk does not verify);
    ///   "damaged, cut or extended data at chunk N" (decryption, N counts from 0);
    ///   "file too large ...", "cannot write output: ...", or a failure of the crypto library or of memory.
    ///
    /// The output grows under a hidden name, ".chat-transfer-<process>-<number>.part", in the output's folder, and
    /// every failure removes it. Only a crash of the process or the machine can leave it behind; it is safe to delete.
    /// The rename itself is not flushed: should the machine lose power right after success, the output may still be
    /// missing, so a caller that deletes the input relies on the file system keeping the order of a rename and a later
    /// deletion, as journalling file systems do.
    int File_Aes_Go_Block(bool encrypt, const char* key, const char* input, const char* output, char* error);

private:
    struct Buffers;
    std::unique_ptr<Buffers> buffers_;
};
