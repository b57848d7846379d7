// Compares a tree with an account into which it was imported, record by record. Nothing is changed on either side.
#pragma once

#include <map>
#include <set>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "app/attachments/attachment_files.h"
#include "app/places/account_place.h"
#include "app/tree/tree_contents.h"
#include "app/verify/compare_records.h"
#include "app/verify/verify_report.h"
#include "transfer/dbTrans.h"

namespace app {

/// How much was looked at.
struct TreeVerifyCounts {
    long long messages = 0;  ///< of the tree
    long long equalMessages = 0;
    long long contacts = 0;  ///< of the one file that counts
    long long notes = 0;
    long long rooms = 0;
    AttachmentCounts attachments;  ///< that messages and notes name; none for the back database
};

class TreeVerification {
public:
    /// The account's recent contacts by conversation.
    using Contacts = std::map<long long, imsdk::st_dbReContactBean>;

    /// `transfer` has the account's database `database` open, and for the main one the plugin database too.
    TreeVerification(TreeSource source, Database database, dbTrans& transfer);

    void run();

    [[nodiscard]] const VerifyReport& report() const { return report_; }
    [[nodiscard]] const TreeVerifyCounts& counts() const { return counts_; }
    [[nodiscard]] const TreeFacts& facts() const { return facts_; }
    /// The file of recent contacts, in facts(), that was held against the account. Null when there is none.
    [[nodiscard]] const TreeContactFile* contactFile() const { return contactFile_; }

private:
    // Messages of the tree with one id; the first of them is the one that an import stores.
    using Messages = std::unordered_map<long long, std::vector<PackageMessage>>;

    // What was seen of a conversation's table.
    struct Table {
        long long conversation;
        long long rows;
        long long oldest;  ///< the smallest time_
    };

    [[nodiscard]] imsdk::dbUtils& db();
    void readTreeFiles();
    void compareConversation(long long conversation, Messages& messages);
    void compareRow(const Table& table, const imsdk::st_dbMessageBean& row,
                    const std::vector<PackageMessage>& messages);
    void noteMissing(const Table& table, const imsdk::st_dbMessageBean& message);
    void compareContacts();
    [[nodiscard]] const TreeContactFile* fileThatCounts(const Contacts& stored) const;
    void compareContactsOf(const TreeContactFile& file, const Contacts& stored);
    void compareNotes();
    void compareRooms();

    TreeSource source_;
    Database database_;
    dbTrans& transfer_;
    TreeFacts facts_;
    std::map<long long, Messages> conversations_;
    AttachmentFiles attachments_;
    const TreeContactFile* contactFile_ = nullptr;
    VerifyReport report_;
    TreeVerifyCounts counts_;
};

}  // namespace app
