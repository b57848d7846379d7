#include "transfer/omission.h"

#include <algorithm>
#include <iterator>

namespace chattransfer {
namespace {

struct Row {
    Omission kind;
    OmissionCause cause;
    const char* word;
    const char* sentence;
    const char* beforeDetail = ": ";
};

using Kind = Omission;
using Cause = OmissionCause;

constexpr Row kRows[] = {
    {Kind::attachmentMissing, Cause::missing, "attachmentMissing", "the attachment is missing"},
    {Kind::attachmentRefused, Cause::refused, "attachmentRefused",
     "the attachment's name leads outside its folder, or is no regular file"},
    {Kind::attachmentNotWritten, Cause::unwritten, "attachmentNotWritten", "the attachment could not be written"},

    {Kind::messageFileNotWritten, Cause::unwritten, "messageFileNotWritten", "the message file could not be written"},
    {Kind::messageFileUnreadable, Cause::unreadable, "messageFileUnreadable", "the message file cannot be read"},
    {Kind::messageFileNotJson, Cause::malformed, "messageFileNotJson", "the message file is not a JSON object"},
    {Kind::messageFileOtherVersion, Cause::otherVersion, "messageFileOtherVersion",
     "the message file has another version", " than "},
    {Kind::messageFileWithoutDays, Cause::malformed, "messageFileWithoutDays", "the message file has no list of days"},
    {Kind::messageFileUncertain, Cause::unreadable, "messageFileUncertain",
     "whether this message file is there cannot be said; none is read from here on"},
    {Kind::messageFileMalformed, Cause::malformed, "messageFileMalformed", "is not JSON of this format"},
    {Kind::messageFilesBehindGap, Cause::misnamed, "messageFilesBehindGap",
     "behind a gap in the numbering, where no import reads either"},

    {Kind::contactFileNotWritten, Cause::unwritten, "contactFileNotWritten",
     "the recent-contact file could not be written"},
    {Kind::contactFileMissing, Cause::missing, "contactFileMissing", "is gone"},
    {Kind::contactFileNotJson, Cause::malformed, "contactFileNotJson", "the recent-contact file is not JSON"},
    {Kind::contactFileOtherVersion, Cause::otherVersion, "contactFileOtherVersion",
     "the recent-contact file has another version", " than "},
    {Kind::contactFileMalformed, Cause::malformed, "contactFileMalformed", "is not JSON of this format"},

    {Kind::treeFileUndecryptable, Cause::undecryptable, "treeFileUndecryptable", "cannot be decrypted"},
    {Kind::treeFileMissing, Cause::missing, "treeFileMissing", "is gone"},
    {Kind::treeFileIrregular, Cause::irregular, "treeFileIrregular", "is not a regular file"},
    {Kind::treeFileUnreadable, Cause::unreadable, "treeFileUnreadable", "cannot be read"},
    {Kind::treeFileNotJson, Cause::malformed, "treeFileNotJson", "is not JSON"},
    {Kind::treeFileOtherVersion, Cause::otherVersion, "treeFileOtherVersion", "has another version", " than "},
    {Kind::treeFileWithoutDays, Cause::malformed, "treeFileWithoutDays", "has no list of days"},
    {Kind::treeFileWithoutConversation, Cause::misnamed, "treeFileWithoutConversation",
     "its path names no conversation"},
    {Kind::treeFileWithoutTable, Cause::unplaced, "treeFileWithoutTable", "its conversation has no table"},
    {Kind::treeFileMalformed, Cause::malformed, "treeFileMalformed", "is not JSON of this format"},
    {Kind::treeFileWithoutRecords, Cause::malformed, "treeFileWithoutRecords", "has no list of records"},
    {Kind::treeFileSecondCopy, Cause::superfluous, "treeFileSecondCopy", "is a second copy of a file that is there"},
    {Kind::treeFileLeftover, Cause::superfluous, "treeFileLeftover", "is a leftover of an interrupted decryption"},
    {Kind::treeEntryIrregular, Cause::irregular, "treeEntryIrregular", "is a link or no regular file"},

    {Kind::folderNotSearched, Cause::unreadable, "folderNotSearched", "cannot be searched", " for "},
    {Kind::folderUnreadable, Cause::unreadable, "folderUnreadable", "cannot be read"},

    {Kind::tableListUnreadable, Cause::unreadable, "tableListUnreadable", "it could not be read whole"},
    {Kind::tableMisnamed, Cause::misnamed, "tableMisnamed", "the table's name cannot stand in a statement"},
    {Kind::tableUnreadable, Cause::unreadable, "tableUnreadable", "the table could not be read whole"},
    {Kind::tableNotCreated, Cause::unwritten, "tableNotCreated", "the table could not be created"},
    {Kind::conversationTableNotCreated, Cause::unwritten, "conversationTableNotCreated",
     "the conversation's table could not be created"},

    {Kind::messageUnplaced, Cause::unplaced, "messageUnplaced", "the day key is too long: a message was left out"},
    {Kind::messageRefused, Cause::refused, "messageRefused", "the database refused it"},
    {Kind::noteRefused, Cause::refused, "noteRefused", "the database refused it"},
    {Kind::roomRefused, Cause::refused, "roomRefused", "the database refused it"},
    {Kind::transactionLost, Cause::unwritten, "transactionLost", "the transaction failed"},
    {Kind::packageNotFlushed, Cause::unwritten, "packageNotFlushed", "the package could not be flushed to the disk"},
};

// A number that is no kind can only come from outside: it says nothing.
constexpr Row kUnknown{Omission{}, OmissionCause{}, "", ""};

const Row& rowOf(Omission kind) {
    const auto* const found =
        std::find_if(std::begin(kRows), std::end(kRows), [kind](const Row& row) { return row.kind == kind; });
    return found != std::end(kRows) ? *found : kUnknown;
}

}  // namespace

OmittedThing thingOf(Omission kind) {
    constexpr int kKindsOfAThing = 100;
    return static_cast<OmittedThing>(static_cast<int>(kind) / kKindsOfAThing);
}

OmissionCause causeOf(Omission kind) {
    return rowOf(kind).cause;
}

const char* wordOf(Omission kind) {
    return rowOf(kind).word;
}

std::string sentenceOf(Omission kind, std::string_view detail) {
    const Row& row = rowOf(kind);
    std::string sentence = row.sentence;
    if (!detail.empty()) sentence.append(row.beforeDetail).append(detail);
    return sentence;
}

}  // namespace chattransfer
