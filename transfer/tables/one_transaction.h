// One transaction around all writes of an import, with an account that is true also when it is lost.
#pragma once

#include <string>

#include "host/dbUtils.h"
#include "transfer/error_codes.h"
#include "transfer/transaction_guard.h"
#include "transfer/transfer_report.h"

namespace chattransfer {

/// The counts of `report` that stand for rows in a database.
struct RowCounts {
    explicit RowCounts(const TransferReport& report);
    void restoreIn(TransferReport& report) const;

private:
    long long messagesInserted_;
    long long messagesTrimmed_;
    long long tablesCreated_;
    long long contactsInserted_;
    long long contactsPinned_;
    long long notesInserted_;
    long long roomsInserted_;
};

/// Runs work(), which gives a code, in one transaction on `db` and ends it. The code of work(), or kDatabaseFailed when
/// the transaction could not begin (work is not run then) or its writes were lost; the counts are those of before then.
/// An exception out of work() loses the writes, too, and passes.
template <class Work>
[[nodiscard]] ErrorCode inOneTransaction(TransferReport& report, imsdk::dbUtils& db, const std::string& what,
                                         Work work) {
    const RowCounts before(report);
    ErrorCode result = kDatabaseFailed;
    {
        const DbTranHelper transaction(&db);
        try {
            if (!db.transactionFailed()) result = work();
        } catch (...) {
            // The guard ends the transaction also now: what was written of the batch must not stay without the rest.
            db.abandonTransaction();
            before.restoreIn(report);
            throw;
        }
    }
    if (!db.transactionFailed()) return result;
    before.restoreIn(report);
    report.skip(what, Omission::transactionLost, db.lastError());
    return kDatabaseFailed;
}

}  // namespace chattransfer
