#include "app/verify/verification.h"

#include <algorithm>
#include <utility>

#include "app/account/open_database.h"
#include "app/attachments/package_file_names.h"
#include "app/base/units.h"
#include "app/verify/attachment_check.h"
#include "host/base/numeric.h"
#include "transfer/base/progress.h"
#include "transfer/format/attachment_body.h"
#include "transfer/format/package_format.h"
#include "transfer/tables/message_table.h"
#include "transfer/tables/recent_contact_table.h"

namespace app {
namespace {

using imsdk::st_dbMessageBean;
using imsdk::st_dbReContactBean;

std::string described(const st_dbMessageBean& message) {
    return "message " + std::to_string(message.msgID) + " of conversation " + std::to_string(message.targetID);
}

std::string described(const st_dbReContactBean& contact) {
    return "contact " + std::to_string(contact.targetID);
}

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

// Reads the rows of `table` one after another. False when the table cannot be read whole.
template <class Record, class ReadRow, class Take>
bool forEachRow(imsdk::dbUtils& db, const std::string& table, ReadRow readRow, Take take) {
    if (!chattransfer::isPlainTableName(table)) return false;
    imsdk::dbDataReader reader = db.excuteQuery(("select * from " + table).c_str());
    Record record;
    while (reader.read() != 0) {
        readRow(reader, record);
        take(record);
    }
    return !reader.failed();
}

}  // namespace

Verification::Verification(VerifySettings settings, PackagePlace place, dbTrans& transfer)
    : settings_(std::move(settings)),
      place_(std::move(place)),
      transfer_(transfer),
      attachments_(place_.attachments, transfer.rootPath) {}

imsdk::dbUtils& Verification::db() {
    return connection(transfer_, settings_.database);
}

bool Verification::isSelected(const st_dbMessageBean& message) const {
    return !(CivilDay{message.year_, message.mon, message.day_} < settings_.since);
}

void Verification::run(ProgressBar& progress) {
    progress.begin("Reading the package", {});
    readPackageFiles();
    progress.begin("Comparing", {{1, "Comparing conversations"}});
    transfer_.getTables2(db());
    chattransfer::ProgressThrottle throttle;
    const auto tables = static_cast<int>(transfer_.tableNames.size());
    for (int i = 0; i < tables; ++i) {
        const std::string& table = transfer_.tableNames[static_cast<std::size_t>(i)];
        if (chattransfer::isMessageTable(table)) compareTable(table);
        if (throttle.due(i + 1 == tables)) transfer_.progress(1, tables, i + 1);
    }
    noteUnmatched();
    // The back database has no recent contacts.
    if (settings_.database == Database::main) compareContactTable();
    progress.begin("Comparing attachments", {});
    counts_.attachments = checkPackageAttachments(attachments_, settings_.direction, report_);
    progress.complete();
}

void Verification::readPackageFiles() {
    facts_ = readPackage(place_, [this](PackageMessage message) {
        if (!isSelected(message.record)) return;
        ++counts_.packageMessages;
        forEachPackageFile(message.record.body, message.record.msgType, attachments_.adder());
        index_.add(std::move(message));
    });
    index_.sort();
    // Of several entries for one conversation an import stores the first.
    for (const st_dbReContactBean& contact : facts_.contacts)
        contacts_.emplace(asPackaged(contact.targetID), &contact);
    for (const TransferReport::Skipped& file : facts_.unreadable)
        report_.add(Finding::fileUnreadable, file.what);
    if (facts_.filesBehindGap > 0) {
        report_.add(Finding::fileUnreadable,
                    counted(facts_.filesBehindGap, "message file stands", "message files stand") +
                        " behind a gap in the numbering, which no import passes");
    }
}

void Verification::compareTable(const std::string& table) {
    const bool whole = forEachRow<st_dbMessageBean>(db(), table, chattransfer::readMessageRow, [this](const auto& row) {
        if (isSelected(row)) compareRow(row);
    });
    if (!whole && settings_.direction != Direction::imported) report_.add(Finding::tableUnreadable, table);
}

void Verification::compareRow(const st_dbMessageBean& row) {
    ++counts_.accountMessages;
    if (settings_.direction != Direction::imported) forEachPackageFile(row.body, row.msgType, attachments_.adder());
    const std::vector<PackageIndex::PackagedMessage*> candidates = index_.candidates(row);
    Comparison best;
    PackageIndex::PackagedMessage* match = nullptr;
    for (PackageIndex::PackagedMessage* candidate : candidates) {
        Comparison comparison = compareMessages(row, candidate->message, settings_.direction);
        const bool fits = comparison.differing.empty();
        if (match != nullptr && !fits) continue;
        match = candidate;
        best = std::move(comparison);
        if (fits) break;
    }
    if (match == nullptr) {
        if (settings_.direction != Direction::imported) report_.add(Finding::messageNotInPackage, described(row));
        return;
    }
    match->matched = true;
    for (const Rule rule : best.rules)
        report_.add(rule);
    if (best.differing.empty()) {
        ++counts_.equalMessages;
    } else {
        report_.add(Finding::messageDiffers, described(row) + ": " + joined(best.differing));
    }
}

void Verification::noteUnmatched() {
    if (settings_.direction == Direction::exported) return;
    index_.forEachUnmatched([this](const PackageMessage& message, bool idIsTaken) {
        if (idIsTaken) {
            report_.add(Rule::idShared);
        } else {
            report_.add(Finding::messageNotInAccount, described(message.record));
        }
    });
}

void Verification::compareContactTable() {
    counts_.packageContacts = static_cast<long long>(facts_.contacts.size());
    const auto& names = transfer_.tableNames;
    const bool hasTable = std::find(names.begin(), names.end(), chattransfer::kRecentContactTable) != names.end();
    const bool whole = !hasTable || forEachRow<st_dbReContactBean>(db(), chattransfer::kRecentContactTable,
                                                                   chattransfer::readRecentContactRow,
                                                                   [this](const auto& row) { compareContact(row); });
    if (!whole) report_.add(Finding::tableUnreadable, chattransfer::kRecentContactTable);
    if (!facts_.hasContacts && counts_.accountContacts > 0 && settings_.direction != Direction::imported) {
        report_.add(Finding::contactNotInPackage, "all " + grouped(counts_.accountContacts) + ": the package has no " +
                                                      chattransfer::kRecentContactFileName +
                                                      " (the packed layout writes none)");
    }
    if (settings_.direction == Direction::exported) return;
    for (const st_dbReContactBean& contact : facts_.contacts) {
        if (matchedContacts_.count(asPackaged(contact.targetID)) == 0) {
            report_.add(Finding::contactNotInAccount, described(contact));
        }
    }
}

void Verification::compareContact(const st_dbReContactBean& row) {
    ++counts_.accountContacts;
    const auto match = contacts_.find(asPackaged(row.targetID));
    if (match == contacts_.end()) {
        if (settings_.direction != Direction::imported && facts_.hasContacts) {
            report_.add(Finding::contactNotInPackage, described(row));
        }
        return;
    }
    matchedContacts_.insert(asPackaged(row.targetID));
    const Comparison comparison = compareContacts(row, *match->second, settings_.direction);
    for (const Rule rule : comparison.rules)
        report_.add(rule);
    if (!comparison.differing.empty()) {
        report_.add(Finding::contactDiffers, described(row) + ": " + joined(comparison.differing));
    }
}

}  // namespace app
