// Looks into the files of a package without changing anything anywhere.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "app/places/package_place.h"
#include "transfer/records.h"
#include "transfer/transfer_report.h"

namespace app {

/// The lists that a day object gives all its messages. Packages that this program writes have none there.
struct DayLists {
    std::string limitRange;
    std::string relatedUsers;
};

/// A message as its file says it: unlike an import, with securityLevel and the lists of the message object.
struct PackageMessage {
    imsdk::st_dbMessageBean record;
    std::shared_ptr<const DayLists> dayLists;  ///< null when the day object has no lists
};

/// What was found besides the messages themselves.
struct PackageFacts {
    int messageFiles = 0;                             ///< numbered from 0 without a gap
    std::map<std::string, int> versions;              ///< how many files say which version; missing ones as "(none)"
    std::vector<TransferReport::Skipped> unreadable;  ///< files that are not of the format
    long long filesBehindGap = 0;                     ///< message files that no import reaches
    bool hasContacts = false;                         ///< recent contacts could be read
    std::vector<imsdk::st_dbReContactBean> contacts;
};

/// Calls take(message) for every message, file by file.
[[nodiscard]] PackageFacts readPackage(const PackagePlace& place, const std::function<void(PackageMessage)>& take);

/// Throws Failure when the package's first message file has another version: better before anything is made than half
/// way through an import. The other files are left to the import.
void requireVersion(const PackagePlace& place, const std::string& version);

/// Message files with a number after one that is missing.
[[nodiscard]] long long countFilesBehindGap(const PackagePlace& place);

/// How many files of the package an import could not read; `report` is its report.
[[nodiscard]] long long countUnreadableFiles(const PackagePlace& place, const TransferReport& report);

}  // namespace app
