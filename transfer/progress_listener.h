// What a host implements to hear of progress.
//
// Threads: it is called on the thread that called the operation, and on no other. A listener of several transfer
// objects that work at the same time has to expect calls on several threads.
#pragma once

class ProgressListener {
public:
    ProgressListener() = default;
    ProgressListener(const ProgressListener&) = default;
    ProgressListener& operator=(const ProgressListener&) = default;
    ProgressListener(ProgressListener&&) = default;
    ProgressListener& operator=(ProgressListener&&) = default;
    virtual ~ProgressListener() = default;

    /// Called synchronously, on the thread that called the operation.
    ///
    /// `context` is the transfer object's progressContext, unchanged. `stage` names the phase: 1 message files or
    /// tables, 2 attachments on export and message files on package import; a whole tree import counts 0 to 3.
    /// `percent` is truncated toward zero. `text` is "<done>/<total>", NUL-terminated, valid during the call.
    ///
    /// May throw to end the operation: the transaction that is open is rolled back, no file under its final name is
    /// half written, and the exception passes through the operation to its caller. Conversations of a package that were
    /// committed before stay; run again on a fresh transfer object, the same operations add what is missing.
    virtual void onProgress(long long context, int stage, int percent, const char* text) = 0;
};
