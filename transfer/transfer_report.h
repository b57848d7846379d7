// What the operations of one transfer object did, in numbers, and what they left out with the reason. The result codes
// say only whether an operation failed; many rules skip a record or a file and go on. Hosts show this to the user.
//
// Threads: a report belongs to the thread of its transfer object while that works.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "transfer/omission.h"

/// Counts add up over the operations of one object until the host assigns a fresh TransferReport.
struct TransferReport {
    /// A file, record or table that was left out.
    struct Skipped {
        std::string what;               ///< path, table or attachment name, as foreign text gave it
        std::string reason;             ///< in English words, made from the kind and its detail
        chattransfer::Omission kind{};  ///< what kind of thing it is and why it was left out, for programs

        static Skipped of(std::string_view what, chattransfer::Omission kind, std::string_view detail = {}) {
            return {std::string(what), chattransfer::sentenceOf(kind, detail), kind};
        }
    };

    long long messagesSelected = 0;     ///< rows that an export read from the databases
    long long messagesWritten = 0;      ///< messages that an export put into message files
    long long messageFilesWritten = 0;  ///< message files that stand whole in the package
    long long contactsWritten = 0;      ///< recent contacts that an export put into the package
    long long messagesRead = 0;         ///< messages read from a package or tree
    long long messagesInserted = 0;     ///< rows that an import added
    long long messagesDuplicate = 0;    ///< messages that the table had already
    long long messagesRefused = 0;      ///< messages whose insert the database refused for another reason
    long long messagesTrimmed = 0;      ///< old rows that the trimming rule removed
    long long tablesCreated = 0;        ///< conversations that were new
    long long contactsInserted = 0;     ///< recent contacts that were new
    long long contactsPinned = 0;       ///< recent contacts whose pin was written
    long long contactsKept = 0;         ///< recent contacts that were there and stayed as they were
    long long notesInserted = 0;
    long long notesDuplicate = 0;
    long long roomsInserted = 0;
    long long roomsDuplicate = 0;
    long long attachmentsDone = 0;     ///< files copied or moved
    long long attachmentsPresent = 0;  ///< files that were at their place already
    long long attachmentsMissing = 0;  ///< files that messages name and that do not exist
    long long attachmentsRefused = 0;  ///< names that lead outside their folder, or over a symbolic link
    long long attachmentsFailed = 0;   ///< files that could not be copied or moved

    /// The first kMostSkipped left-out things; skippedCount counts all.
    std::vector<Skipped> skipped;
    long long skippedCount = 0;

    static constexpr std::size_t kMostSkipped = 1000;

    void add(const Skipped& one) {
        ++skippedCount;
        if (skipped.size() < kMostSkipped) skipped.push_back(one);
    }

    /// `detail` completes the sentence, where omission.h says so.
    void skip(std::string_view what, chattransfer::Omission kind, std::string_view detail = {}) {
        ++skippedCount;
        if (skipped.size() < kMostSkipped) skipped.push_back(Skipped::of(what, kind, detail));
    }
};
