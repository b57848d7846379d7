// The scope of one transaction.
//
// Threads: a guard begins and ends on the thread that its connection belongs to.
#pragma once

#include "host/dbUtils.h"

/// Begins a transaction on `db` and ends it when the scope ends, normally or by an exception. A null connection makes
/// no call at all. An exception out of endTransaction() ends the process: a commit of unknown outcome must not be
/// passed over.
class DbTranHelper {
public:
    /// `db` is not owned and must outlive the guard.
    explicit DbTranHelper(imsdk::dbUtils* db) : db_(db) {
        if (db_ != nullptr) db_->beginTransaction();
    }
    ~DbTranHelper() {
        if (db_ != nullptr) db_->endTransaction();
    }
    DbTranHelper(const DbTranHelper&) = delete;
    DbTranHelper& operator=(const DbTranHelper&) = delete;
    DbTranHelper(DbTranHelper&&) = delete;
    DbTranHelper& operator=(DbTranHelper&&) = delete;

private:
    imsdk::dbUtils* db_;
};
