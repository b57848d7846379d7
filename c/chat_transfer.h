/* The transfer for hosts that bind C: Swift, Kotlin/JNI, Dart, Python.
 *
 * A chat_transfer object carries one export of a user's chat history into a backup package, or one import of a package
 * or of an encrypted tree into an account. Set where things are, run operations one after another, and read what they
 * did.
 *
 * Texts are NUL-terminated UTF-8. Texts that are given are copied; texts that come back belong to the object and are
 * valid until the next call on it. Nothing here throws, prints or ends the process. A null object gives
 * CHAT_TRANSFER_INVALID, 0 or an empty text.
 *
 * Threads: an object belongs to one thread at a time, and calls its progress function on no other. Other objects may
 * work on other threads at the same time, each with an account and a backup folder of its own.
 */
#ifndef CHAT_TRANSFER_C_H
#define CHAT_TRANSFER_C_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* NOLINTBEGIN(readability-identifier-naming): the names are C's */

typedef struct chat_transfer chat_transfer;

/* --- Results --- */

/* What operations give: CHAT_TRANSFER_OK or one of the others. Those from 0xff000000 on are the transfer's own codes.
 */
#define CHAT_TRANSFER_OK UINT32_C(0)
#define CHAT_TRANSFER_INVALID UINT32_C(1)       /* a null object, or an argument that has no such value */
#define CHAT_TRANSFER_OUT_OF_MEMORY UINT32_C(2) /* nothing of the batch at work was stored; others may be */
#define CHAT_TRANSFER_FAILED UINT32_C(3) /* the C++ library or the crypto library failed; the error text says how */
#define CHAT_TRANSFER_PACKAGE_EXISTS UINT32_C(0xff00001e)
#define CHAT_TRANSFER_DATABASE_FAILED UINT32_C(0xff00001f)
#define CHAT_TRANSFER_NO_TABLES UINT32_C(0xff000020)
#define CHAT_TRANSFER_NOT_JSON UINT32_C(0xff000021)
#define CHAT_TRANSFER_MISSING UINT32_C(0xff000022)
#define CHAT_TRANSFER_JSON_FAILED UINT32_C(0xff000023)
#define CHAT_TRANSFER_WRONG_VERSION UINT32_C(0xff000024)

/* The meaning of a result in one English clause, for example "a database could not be opened or written". Never null.
 */
const char* chat_transfer_meaning(uint32_t result);

/* The version of this library, for example "0.1.0". */
const char* chat_transfer_version(void);

/* --- Life --- */

/* A new object with nothing set; null without memory. */
chat_transfer* chat_transfer_new(void);

/* Ends the object: its databases are closed, its copy of the key is overwritten. Null is allowed. */
void chat_transfer_free(chat_transfer* transfer);

/* --- Where things are ---
 * Each gives CHAT_TRANSFER_OK, CHAT_TRANSFER_INVALID for a null text, or CHAT_TRANSFER_OUT_OF_MEMORY. */

/* Folder of the account: databases in "db/", attachments in "audio/", "file/", "image/" and "video/". No separator at
 * its end. The databases are never made: an empty file is an empty database. */
uint32_t chat_transfer_set_account(chat_transfer* transfer, const char* folder);

/* Folder that holds, or gets, the package "qelmsg_0" and the tree "qelbackup". For an export shorter than 90 bytes. */
uint32_t chat_transfer_set_backup(chat_transfer* transfer, const char* folder);

/* Name of the user's own folder in packages and trees: the user's id in decimal. */
uint32_t chat_transfer_set_user(chat_transfer* transfer, const char* user);

/* Version text that packages get and must have. */
uint32_t chat_transfer_set_package_version(chat_transfer* transfer, const char* version);

/* Key text of the encrypted databases and of a tree's files; an empty text for unencrypted databases. */
uint32_t chat_transfer_set_key(chat_transfer* transfer, const char* key);

/* Message table that a package import cuts back to its newest 3000 rows when it has more than 5000, for example
 * "im_msg_2002"; an empty text for none. */
uint32_t chat_transfer_set_trimmed_table(chat_transfer* transfer, const char* table);

/* Hears of progress, on the thread of the operation. `stage` names the phase: 1 message files or tables, 2 attachments
 * on export and message files on package import; a tree import counts 0 to 3. `percent` is truncated; `text` is
 * "<done>/<total>", valid during the call. A null function ends the listening. The function must not call this object.
 */
typedef void (*chat_transfer_progress)(void* context, int stage, int percent, const char* text);
void chat_transfer_set_progress(chat_transfer* transfer, chat_transfer_progress progress, void* context);

/* --- Operations --- */

/* How messages are put into files, and which database gets them. Integers of a fixed size, since that of an enum
 * differs between compilers; any other value gives CHAT_TRANSFER_INVALID. */
typedef int32_t chat_transfer_layout;
#define CHAT_TRANSFER_BY_DAY INT32_C(0)
#define CHAT_TRANSFER_PACKED INT32_C(1)
typedef int32_t chat_transfer_database;
#define CHAT_TRANSFER_MAIN INT32_C(0)
#define CHAT_TRANSFER_BACK INT32_C(1)

/* Writes the messages dated on or after the day into a new package, with recent contacts (by day only) and attachments.
 * Packed files hold 1000 messages; what follows the last full 1000 inside the last day is left out of them.
 * CHAT_TRANSFER_PACKAGE_EXISTS when the backup folder has a package, CHAT_TRANSFER_DATABASE_FAILED,
 * CHAT_TRANSFER_NO_TABLES, CHAT_TRANSFER_JSON_FAILED. A package of a failed export is not whole: remove it. */
uint32_t chat_transfer_export(chat_transfer* transfer, int year, int month, int day, chat_transfer_layout layout);

/* Reads the package into the database, attachments into the account's folders. What the database has already stays as
 * it is: importing twice doubles nothing. CHAT_TRANSFER_MISSING, CHAT_TRANSFER_WRONG_VERSION,
 * CHAT_TRANSFER_DATABASE_FAILED. Conversations are stored whole or not at all. */
uint32_t chat_transfer_import_package(chat_transfer* transfer, chat_transfer_database database);

/* Decrypts the tree's files where they are and imports messages, recent contacts, notes and rooms into the main and the
 * plugin database; attachments are moved into the account's folders. CHAT_TRANSFER_MISSING,
 * CHAT_TRANSFER_WRONG_VERSION, CHAT_TRANSFER_DATABASE_FAILED. */
uint32_t chat_transfer_import_tree(chat_transfer* transfer);

/* Imports the tree's messages, and nothing else, into the back database. With `remove_decrypted` other than 0 each
 * decrypted file goes whose messages are all stored. */
uint32_t chat_transfer_import_tree_back(chat_transfer* transfer, int remove_decrypted);

/* --- What happened --- */

/* Counts of all operations since the object was made or cleared. New counts are added at the end: give the size that
 * you compiled with. */
typedef struct {
    int64_t messages_selected;  /* rows that an export read */
    int64_t messages_written;   /* messages that an export put into files */
    int64_t files_written;      /* message files that stand whole in the package */
    int64_t contacts_written;   /* recent contacts that an export put into the package */
    int64_t messages_read;      /* messages read from a package or tree */
    int64_t messages_inserted;  /* rows that an import added */
    int64_t messages_duplicate; /* messages that the table had already */
    int64_t messages_refused;   /* messages that the database refused for another reason */
    int64_t messages_trimmed;   /* old rows that the trimming rule removed */
    int64_t tables_created;     /* conversations that were new */
    int64_t contacts_inserted;  /* recent contacts that were new */
    int64_t notes_inserted;
    int64_t notes_duplicate;
    int64_t rooms_inserted;
    int64_t rooms_duplicate;
    int64_t attachments_done;    /* files copied or moved */
    int64_t attachments_present; /* files that were at their place already */
    int64_t attachments_missing; /* files that messages name and that do not exist */
    int64_t attachments_refused; /* names that lead outside their folder */
    int64_t attachments_failed;  /* files that could not be copied or moved */
    int64_t left_out;            /* things left out, for any reason; the first thousand can be asked for below */
} chat_transfer_counts;

/* Fills the first `size` bytes of `counts`. */
void chat_transfer_get_counts(const chat_transfer* transfer, chat_transfer_counts* counts, size_t size);

/* The thing left out at `index` (from 0) and the reason in English; empty texts beyond the last that is kept. */
const char* chat_transfer_left_out_name(const chat_transfer* transfer, size_t index);
const char* chat_transfer_left_out_reason(const chat_transfer* transfer, size_t index);

/* What kind of thing it is and why it was left out, for programs: one of those below, or one that a later version adds.
 * The hundreds say what it is: 1 an attachment, 2 a message file of a package, 3 a file of recent contacts, 4 a file of
 * a tree, 5 a folder, 6 a table, 7 a message, 8 a note, 9 a room, 10 all of a transaction, 11 the package. 0 beyond the
 * last that is kept. */
int32_t chat_transfer_left_out_kind(const chat_transfer* transfer, size_t index);

#define CHAT_TRANSFER_LEFT_OUT_ATTACHMENT_MISSING INT32_C(101)
#define CHAT_TRANSFER_LEFT_OUT_ATTACHMENT_REFUSED INT32_C(102)
#define CHAT_TRANSFER_LEFT_OUT_ATTACHMENT_NOT_WRITTEN INT32_C(103)
#define CHAT_TRANSFER_LEFT_OUT_MESSAGE_FILE_NOT_WRITTEN INT32_C(201)
#define CHAT_TRANSFER_LEFT_OUT_MESSAGE_FILE_UNREADABLE INT32_C(202)
#define CHAT_TRANSFER_LEFT_OUT_MESSAGE_FILE_NOT_JSON INT32_C(203)
#define CHAT_TRANSFER_LEFT_OUT_MESSAGE_FILE_OTHER_VERSION INT32_C(204)
#define CHAT_TRANSFER_LEFT_OUT_MESSAGE_FILE_WITHOUT_DAYS INT32_C(205)
#define CHAT_TRANSFER_LEFT_OUT_MESSAGE_FILE_UNCERTAIN INT32_C(206)
#define CHAT_TRANSFER_LEFT_OUT_CONTACT_FILE_NOT_WRITTEN INT32_C(301)
#define CHAT_TRANSFER_LEFT_OUT_CONTACT_FILE_MISSING INT32_C(302)
#define CHAT_TRANSFER_LEFT_OUT_CONTACT_FILE_NOT_JSON INT32_C(303)
#define CHAT_TRANSFER_LEFT_OUT_CONTACT_FILE_OTHER_VERSION INT32_C(304)
#define CHAT_TRANSFER_LEFT_OUT_TREE_FILE_UNDECRYPTABLE INT32_C(401)
#define CHAT_TRANSFER_LEFT_OUT_TREE_FILE_MISSING INT32_C(402)
#define CHAT_TRANSFER_LEFT_OUT_TREE_FILE_IRREGULAR INT32_C(403)
#define CHAT_TRANSFER_LEFT_OUT_TREE_FILE_UNREADABLE INT32_C(404)
#define CHAT_TRANSFER_LEFT_OUT_TREE_FILE_NOT_JSON INT32_C(405)
#define CHAT_TRANSFER_LEFT_OUT_TREE_FILE_OTHER_VERSION INT32_C(406)
#define CHAT_TRANSFER_LEFT_OUT_TREE_FILE_WITHOUT_DAYS INT32_C(407)
#define CHAT_TRANSFER_LEFT_OUT_TREE_FILE_WITHOUT_CONVERSATION INT32_C(408)
#define CHAT_TRANSFER_LEFT_OUT_TREE_FILE_WITHOUT_TABLE INT32_C(409)
#define CHAT_TRANSFER_LEFT_OUT_FOLDER_NOT_SEARCHED INT32_C(501)
#define CHAT_TRANSFER_LEFT_OUT_TABLE_LIST_UNREADABLE INT32_C(601)
#define CHAT_TRANSFER_LEFT_OUT_TABLE_MISNAMED INT32_C(602)
#define CHAT_TRANSFER_LEFT_OUT_TABLE_UNREADABLE INT32_C(603)
#define CHAT_TRANSFER_LEFT_OUT_TABLE_NOT_CREATED INT32_C(604)
#define CHAT_TRANSFER_LEFT_OUT_CONVERSATION_TABLE_NOT_CREATED INT32_C(605)
#define CHAT_TRANSFER_LEFT_OUT_MESSAGE_UNPLACED INT32_C(701)
#define CHAT_TRANSFER_LEFT_OUT_MESSAGE_REFUSED INT32_C(702)
#define CHAT_TRANSFER_LEFT_OUT_NOTE_REFUSED INT32_C(801)
#define CHAT_TRANSFER_LEFT_OUT_ROOM_REFUSED INT32_C(901)
#define CHAT_TRANSFER_LEFT_OUT_TRANSACTION_LOST INT32_C(1001)
#define CHAT_TRANSFER_LEFT_OUT_PACKAGE_NOT_FLUSHED INT32_C(1101)

/* What the last failed operation has to say beyond its result, in English: for example the database's own words. Empty
 * when none failed. */
const char* chat_transfer_error_text(const chat_transfer* transfer);

/* Forgets counts, error and everything that operations have read. Settings stay, databases stay open. */
void chat_transfer_clear(chat_transfer* transfer);

/* NOLINTEND(readability-identifier-naming) */

#ifdef __cplusplus
}
#endif

#endif
