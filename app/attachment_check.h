// The attachments that messages name, in a package and in an account.
#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>

#include "app/compare_records.h"
#include "app/package_place.h"
#include "app/verify_report.h"

namespace app {

/// Collects the attachments of messages, each once, and looks for them on both sides.
class AttachmentCheck {
public:
    AttachmentCheck(std::string packageFolder, std::string accountRoot)
        : packageFolder_(std::move(packageFolder)), accountRoot_(std::move(accountRoot)) {}

    void collect(const std::string& body, int msgType);

    /// What is where; of use without an account too.
    struct Counts {
        long long named = 0;
        long long inPackage = 0;
        long long compared = 0;  ///< on both sides
        long long nowhere = 0;
        long long refused = 0;
    };

    /// Files in the package only; the account is not looked at.
    Counts countInPackage() const;

    /// Holds the files of both sides against each other.
    Counts compare(Direction direction, VerifyReport& report) const;

private:
    // One file: where it lies in the package, and under which names in the account's folder for its kind. Those of an
    // export and of an import differ when a file name has a folder of its own.
    struct File {
        std::string kindFolder;
        std::string packagePath;
        std::string exportName;
        std::string importName;

        bool operator<(const File& other) const;
    };

    void add(File file);
    bool isRefused(const File& file) const;
    bool isInPackage(const File& file) const;
    std::string accountNameOf(const File& file) const;
    void compareOne(const File& file, Direction direction, VerifyReport& report, Counts& counts) const;
    void noteDifference(const File& file, VerifyReport& report) const;

    std::string packageFolder_;
    std::string accountRoot_;
    std::set<File> files_;
    std::map<std::string, int> usesOfPackagePath_;
    std::map<std::string, int> usesOfAccountName_;
};

}  // namespace app
