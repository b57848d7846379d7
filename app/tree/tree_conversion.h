// Copies a folder tree and encrypts, or decrypts, its record files on the way. The source stays as it is.
#pragma once

#include <string>

#include "app/base/progress_bar.h"
#include "transfer/transfer_report.h"

namespace app {

enum class CipherDirection { encrypt, decrypt };

struct ConversionCounts {
    long long converted = 0;       ///< record files that were encrypted or decrypted
    long long takenDecrypted = 0;  ///< record files of which the decrypted copy was taken
    long long copied = 0;          ///< other files
    long long failed = 0;          ///< record files and folders that should have been there and are not
    TransferReport report;         ///< everything left out, with its reason
};

/// Both folders are absolute; `to` exists, is empty and ends in "/". Links, FIFOs and the like are left out. A
/// decrypted copy (a.mg.decrypt) stands for its record file (a.mg) where that is missing or does not decrypt.
///
/// What cannot be encrypted or written ends the conversion with a Failure; what cannot be decrypted is left out. Ctrl-C
/// ends it between two files: throws Interrupted.
[[nodiscard]] ConversionCounts convertTree(CipherDirection direction, const std::string& from, const std::string& to,
                                           const std::string& key, ProgressBar& progress);

}  // namespace app
