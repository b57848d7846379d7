// Compares a tree with an account into which it was imported, record by record. Nothing is changed on either side.
#pragma once

#include <map>
#include <set>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "app/account.h"
#include "app/compare_records.h"
#include "app/tree_contents.h"
#include "app/tree_file_names.h"
#include "app/verify_report.h"

namespace app {

/// How much was looked at.
struct TreeVerifyCounts {
    long long messages = 0;  ///< of the tree
    long long equalMessages = 0;
    long long contacts = 0;
    long long notes = 0;
    long long rooms = 0;
    long long attachments = 0;  ///< that messages and notes name
    long long attachmentsInAccount = 0;
    long long attachmentsInTree = 0;  ///< not moved yet
};

class TreeVerification {
public:
    /// `transfer` has the account's database `database` open, and for the main one the plugin database too.
    TreeVerification(TreeSource source, Database database, dbTrans& transfer);

    void run();

    const VerifyReport& report() const { return report_; }
    const TreeVerifyCounts& counts() const { return counts_; }

private:
    // Messages of the tree with one id; the first of them is the one that an import stores.
    using Messages = std::unordered_map<long long, std::vector<PackageMessage>>;

    // What was seen of a conversation's table.
    struct Table {
        long long conversation;
        long long rows;
        long long oldest;  ///< the smallest time_
    };

    imsdk::dbUtils& db();
    void readTreeFiles();
    void compareConversation(long long conversation, Messages& messages);
    void compareRow(const Table& table, const imsdk::st_dbMessageBean& row,
                    const std::vector<PackageMessage>& messages);
    void noteMissing(const Table& table, const imsdk::st_dbMessageBean& message);
    void compareContacts();
    void compareNotes();
    void compareRooms();
    void compareAttachments();

    TreeSource source_;
    Database database_;
    dbTrans& transfer_;
    TreeFacts facts_;
    std::map<long long, Messages> conversations_;
    std::set<TreeFileName> files_;
    VerifyReport report_;
    TreeVerifyCounts counts_;
};

}  // namespace app
