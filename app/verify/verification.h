// Compares a package with an account, record by record and file by file. Nothing is changed on either side.
#pragma once

#include <map>
#include <set>

#include "app/attachments/attachment_files.h"
#include "app/base/calendar.h"
#include "app/base/progress_bar.h"
#include "app/places/account_place.h"
#include "app/places/package_place.h"
#include "app/verify/compare_records.h"
#include "app/verify/package_index.h"
#include "app/verify/verify_report.h"
#include "transfer/dbTrans.h"

namespace app {

struct VerifySettings {
    CivilDay since;  ///< messages of earlier days are passed over
    Direction direction = Direction::both;
    Database database = Database::main;
};

/// How much was looked at.
struct VerifyCounts {
    long long packageMessages = 0;
    long long accountMessages = 0;
    long long equalMessages = 0;  ///< as far as the rules let them be
    long long packageContacts = 0;
    long long accountContacts = 0;
    AttachmentCounts attachments;
};

class Verification {
public:
    /// `transfer` has the account's database open.
    Verification(VerifySettings settings, PackagePlace place, dbTrans& transfer);

    void run(ProgressBar& progress);

    [[nodiscard]] const VerifyReport& report() const { return report_; }
    [[nodiscard]] const VerifyCounts& counts() const { return counts_; }

private:
    [[nodiscard]] imsdk::dbUtils& db();
    [[nodiscard]] bool isSelected(const imsdk::st_dbMessageBean& message) const;
    void readPackageFiles();
    void compareTable(const std::string& table);
    void compareRow(const imsdk::st_dbMessageBean& row);
    void noteUnmatched();
    void compareContactTable();
    void compareContact(const imsdk::st_dbReContactBean& row);

    VerifySettings settings_;
    PackagePlace place_;
    dbTrans& transfer_;
    PackageIndex index_;
    PackageFacts facts_;
    AttachmentFiles attachments_;
    std::map<long long, const imsdk::st_dbReContactBean*> contacts_;  // of the package, by id as it holds them
    std::set<long long> matchedContacts_;
    VerifyReport report_;
    VerifyCounts counts_;
};

}  // namespace app
