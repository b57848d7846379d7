// How much an export is about to write, and whether the disk has room for it.
#pragma once

#include <string>

#include "app/places/account_place.h"
#include "transfer/dbTrans.h"

namespace app {

struct ExportSize {
    long long messages = 0;
    long long attachments = 0;  ///< files that are there
    /// About: what the keys around a message take is a mean, and characters that JSON has to escape take more.
    unsigned long long messageBytes = 0;
    unsigned long long attachmentBytes = 0;

    [[nodiscard]] unsigned long long bytes() const { return messageBytes + attachmentBytes; }
};

/// Of the messages that `transfer` has selected.
[[nodiscard]] ExportSize sizeOfExport(const dbTrans& transfer, const Account& account);

/// "20,000 messages and 382 attachments, about 21.0 MB".
[[nodiscard]] std::string inWords(const ExportSize& size);

/// Throws a Failure when the file system of `folder` has no room for the package.
void requireRoom(const ExportSize& size, const std::string& folder);

}  // namespace app
