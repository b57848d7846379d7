// The kinds of things that operations leave out. Programs decide by the kind; people read the sentence, which is made
// from it.
//
// Threads: anything here may be used on several threads at once.
#pragma once

#include <string>
#include <string_view>

namespace chattransfer {

/// What kind of thing was left out.
enum class OmittedThing : int {
    attachment = 1,
    messageFile = 2,  ///< of a package
    contactFile = 3,  ///< a decrypted file of recent contacts, of a package or tree
    treeFile = 4,     ///< any other file of a tree, and all of them while they are encrypted
    folder = 5,       ///< with all that it may hold
    table = 6,        ///< of a database
    message = 7,
    note = 8,
    room = 9,
    batch = 10,    ///< everything that was to be written in one transaction
    package = 11,  ///< as a whole
};

/// Why it was left out.
enum class OmissionCause : int {
    missing = 1,        ///< it is not there, or not any more
    irregular = 2,      ///< a link, FIFO or the like stands where a file should be
    unreadable = 3,     ///< the system or the database could not read it
    undecryptable = 4,  ///< the key does not fit, or it is damaged
    malformed = 5,      ///< it is not of its format
    otherVersion = 6,   ///< it is of another version of its format
    misnamed = 7,       ///< its name or path cannot be used
    unplaced = 8,       ///< there is nothing that it could be put into
    refused = 9,        ///< by the database, or since it leads out of its folder
    unwritten = 10,     ///< it could not be written, made or kept
    superfluous = 11,   ///< it adds nothing to what is there
};

/// What was left out and why, as one number. The numbers and words are interface: they are never given another meaning,
/// and new ones are added. The hundreds are the OmittedThing.
enum class Omission : int {
    attachmentMissing = 101,
    attachmentRefused = 102,
    attachmentNotWritten = 103,

    messageFileNotWritten = 201,
    messageFileUnreadable = 202,
    messageFileNotJson = 203,
    messageFileOtherVersion = 204,  ///< detail: the version that was expected
    messageFileWithoutDays = 205,
    messageFileUncertain = 206,  ///< whether it is there; the reading ends in front of it
    messageFileMalformed = 207,
    messageFilesBehindGap = 208,

    contactFileNotWritten = 301,
    contactFileMissing = 302,
    contactFileNotJson = 303,
    contactFileOtherVersion = 304,
    contactFileMalformed = 305,

    treeFileUndecryptable = 401,  ///< detail: the cipher's words
    treeFileMissing = 402,
    treeFileIrregular = 403,
    treeFileUnreadable = 404,  ///< detail: the system's words, if any
    treeFileNotJson = 405,
    treeFileOtherVersion = 406,  ///< detail: the version that was expected
    treeFileWithoutDays = 407,
    treeFileWithoutConversation = 408,
    treeFileWithoutTable = 409,
    treeFileMalformed = 410,
    treeFileWithoutRecords = 411,
    treeFileSecondCopy = 412,
    treeFileLeftover = 413,
    treeEntryIrregular = 414,

    folderNotSearched = 501,  ///< detail: for what, and the system's words
    folderUnreadable = 502,   ///< detail: the system's words

    tableListUnreadable = 601,  ///< detail: the database's words
    tableMisnamed = 602,
    tableUnreadable = 603,              ///< detail: the database's words
    tableNotCreated = 604,              ///< detail: the database's words
    conversationTableNotCreated = 605,  ///< detail: the database's words

    messageUnplaced = 701,  ///< what: the key of its day
    messageRefused = 702,   ///< detail: the database's words

    noteRefused = 801,  ///< detail: the database's words

    roomRefused = 901,  ///< detail: the database's words

    transactionLost = 1001,  ///< detail: the database's words

    packageNotFlushed = 1101,
};

OmittedThing thingOf(Omission kind);
OmissionCause causeOf(Omission kind);

inline bool isAttachment(Omission kind) {
    return thingOf(kind) == OmittedThing::attachment;
}

/// The kind's name for programs, such as "attachmentMissing": a text without end. Empty for a number that is no kind.
const char* wordOf(Omission kind);

/// Why, in English words that follow the name of the thing: "the attachment is missing". `detail` completes it.
std::string sentenceOf(Omission kind, std::string_view detail = {});

}  // namespace chattransfer
