// The chief header: the transfer object with its records, its guard, its listener and its result codes.
//
// A transfer object carries one export of a user's chat history into a backup package, or one import of a package or
// of an encrypted per-conversation tree into the databases. The host sets the public members, then calls operations
// one after another. Operations throw nothing of their own (std::bad_alloc and what the listener throws pass), print
// nothing and log nothing: results are the codes of error_codes.h, details stand in `report`.
//
// Every int result that can be an error code carries the code's 32 bits: static_cast<unsigned int>(result) ==
// 0xff00001f.
//
// Threads: an object belongs to one thread at a time, and calls its host on no other. Other objects may work on other
// threads at the same time, each with an account and a backup folder of its own. What objects share (the derived keys
// of tree files, the engines of SQLite and OpenSSL) has locks of its own.
//
// Names, spellings and column names that look wrong are part of the interface and stay.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/dbUtils.h"
#include "transfer/error_codes.h"
#include "transfer/progress_listener.h"
#include "transfer/records.h"
#include "transfer/transaction_guard.h"
#include "transfer/transfer_report.h"

// The JSON library's value type, as host/json.h declares it: that header is needed only to look inside.
typedef struct json_value_t JSON_Value;  // NOLINT(modernize-use-using): the library's own declaration, repeated

namespace tools {
class Rehearsal;
}

class dbTrans {
public:
    dbTrans() = default;
    dbTrans(const dbTrans&) = delete;
    dbTrans& operator=(const dbTrans&) = delete;
    dbTrans(dbTrans&&) = delete;
    dbTrans& operator=(dbTrans&&) = delete;

    // --- Virtual operations: they are the host's ---
    // Compiled hosts find countRows as the sixth virtual operation. The five in front are theirs to override; nothing
    // here calls them.
    virtual void hostOperation1() {}
    virtual void hostOperation2() {}
    virtual void hostOperation3() {}
    virtual void hostOperation4() {}
    virtual void hostOperation5() {}

    /// The number of rows of the message table named by `trimTable` in the main database; 0 where there is no such
    /// table. The transfer calls it with (16, null, 0) and nothing else; the default ignores the arguments. A host
    /// overrides it where it has a cheaper count.
    virtual int countRows(int what, const char* condition, int flags);

    /// Closes the databases and overwrites dbKey.
    virtual ~dbTrans();

    // --- Members that the host sets or reads ---
    /// Message table that checkMsgCount() trims; empty trims nothing. Set by the host.
    std::string trimTable;
    /// Messages selected for export, by day key: "2019:3:7" (rdMsgFromDB; further 250s as "2019:3:7_1", ...) or
    /// "2019_3_7" (rdMsgFromDB2).
    std::map<std::string, std::vector<imsdk::st_dbMessageBean>> dayMsgMap;
    /// Recent contacts read from the main database, a package or a tree.
    std::vector<imsdk::st_dbReContactBean> reContacts;
    /// Notes and rooms read from a tree, in the order in which they are written.
    std::vector<st_noteTrans> notes;
    std::vector<st_roomTrans> rooms;
    /// Messages read from a package, by conversation. Nothing here empties it: a second read adds to the first.
    std::map<long long, std::vector<imsdk::st_dbMessageBean>> msgMap;
    /// Folder of the account: databases in "db/", attachments in "audio/", "file/" and "image/". No separator is added
    /// or taken away. Set by the host.
    std::string rootPath;
    /// Folder that holds the package "qelmsg_0" and the tree "qelbackup"; shorter than 90 bytes for an export. Set by
    /// the host.
    std::string backupPath;
    /// Attachment folder and message folder of the package or tree at work, each ending in "/".
    std::string imFileDir;
    std::string msgFileDir;
    /// Key text of the encrypted databases and of tree files; empty for unencrypted databases. Set by the host.
    std::string dbKey;
    imsdk::dbUtils mainDb;
    imsdk::dbUtils backDb;
    imsdk::dbUtils pluginDb;
    /// All tables of the database listed last, in the database's order, plus those that an import created.
    std::vector<std::string> tableNames;
    /// Attachment paths found in selected messages: types 3, 6 and 5. Nothing here empties them.
    std::vector<std::string> audioPaths;
    std::vector<std::string> filePaths;
    std::vector<std::string> imagePaths;
    /// The user's own folder inside a package or tree: for a tree, the user's id in decimal. Set by the host.
    std::string packageSubDir;
    /// Version text that packages get and must have. Set by the host.
    std::string packageVersion;
    /// What regExProgress() and regImProgress() stored; never called by the transfer.
    void (*exProgress)(int, int, int) = nullptr;
    void (*imProgress)(int, int, int) = nullptr;
    /// Number of attachments that exportFile() goes through.
    long long attachmentTotal = 0;
    /// Hears of progress; not owned; null when nobody listens. Set by the host, with the context it wants back.
    ProgressListener* progressListener = nullptr;
    long long progressContext = 0;
    /// Where a tree import moves attachments: voice, files, images and previews, videos. Set by the host.
    std::string userAudioDir;
    std::string userFileDir;
    std::string userImageDir;
    std::string userVideoDir;
    /// What the operations did and left out. Only the host empties it.
    TransferReport report;
    /// For a dry run: while it is set, imports copy and move no attachments, but note here what they would have done,
    /// and count as if they had. Not owned; null for a real import. The databases are written all the same: a dry run
    /// gives `rootPath` a copy of them. Set by the host.
    tools::Rehearsal* rehearsal = nullptr;
    /// Where the attachments of a tree in a dry run are, when its records have been copied to `backupPath` without
    /// them: what backupPath would be for a real import. Empty: in backupPath. Set by the host.
    std::string rehearsalSource;

    // --- Opening, reset, progress ---
    /// Open rootPath + "/db/imsg.db", "/db/backimsg.db" and "/db/plugin/kab.db" with dbKey (none when it is empty).
    /// Non-zero when open, 0 on failure: the result of imsdk::dbUtils::open. Every operation opens what it needs by
    /// itself.
    int dbOpen();
    int backdbOpen();
    int kabDbOpen();

    /// Empties dayMsgMap and tableNames, and nothing else.
    void dataClear();

    void regExProgress(void (*receiver)(int, int, int));
    void regImProgress(void (*receiver)(int, int, int));

    /// Reports `done` of `total` in `stage`: percent truncated toward zero (0 of 0 is 0, anything else of 0 the nearest
    /// limit of int), text "<done>/<total>".
    void progress(int stage, int total, int done);

    // --- Tables and existence ---
    /// List all tables of mainDb (or of `db`) into tableNames (or `names`), replacing what it held. The database must
    /// be open; a failed query leaves the list empty.
    void getTables();
    void getTables2(imsdk::dbUtils& db);
    void getTables3(imsdk::dbUtils& db, std::vector<std::string>& names);

    /// The entry of tableNames that is the conversation's message table, or an empty text.
    std::string isTableExsit(long long targetID);
    /// The same in `names`; but an empty tableNames gives an empty text whatever `names` holds.
    std::string isTableExsit(long long targetID, std::vector<std::string>& names);
    /// True when the plugin database, which must be open, has a table `name`. False for null and for a name of which
    /// the statement would pass 255 bytes.
    bool isTableExsit(char* name);

    /// How many rows of `table` in the main database (or in `db`) have the id; 0 for a failed query.
    int isMsgExsit(std::string table, long long msgID);
    int isMsgExsit(imsdk::dbUtils& db, std::string table, long long msgID);
    /// How many rows of the plugin database equal the note in everything but its content, or the room in name and
    /// members. 0 for a failed query; a room name or member text with an apostrophe makes it fail.
    int isNoteExsit(st_noteTrans& note);
    int isRoomExsit(std::string& roomName, std::string& roomMember);

    // --- Export ---
    /// Select the messages of the main database dated on or after the day into dayMsgMap, and append their attachment
    /// paths to audioPaths, filePaths and imagePaths. The first form also appends the recent contacts to reContacts,
    /// needs the back database and splits a day into entries of 250; the second does neither. 0, kDatabaseFailed or
    /// kNoTables.
    unsigned int rdMsgFromDB(int year, int mon, int day);
    unsigned int rdMsgFromDB2(int year, int mon, int day);
    /// Files a copy of the message under the first of "<dayKey>_1", "<dayKey>_2", ... that holds fewer than 250
    /// messages. A key that would pass 99 bytes leaves the message out, with an entry in the report.
    void searchItem(std::string dayKey, imsdk::st_dbMessageBean& msg);
    /// Appends the attachment paths that a body of type 3, 5 or 6 names. 1 when the body is a JSON object of such a
    /// type, 0 otherwise.
    int parseUrl(std::string body, int msgType);
    /// JSON of the package format: mode 0 a file head, 1 {"msgs": []}, 2 the message; null for any other mode, and for
    /// mode 2 without a message. The caller owns the value and frees it with json_value_free of host/json.h.
    JSON_Value* makeJson(int mode, imsdk::st_dbMessageBean* msg);
    /// Creates backupPath + "/qelmsg_0/" with its folders and sets msgFileDir and imFileDir. 1 when created; 0 when the
    /// root exists already or its path passes 99 bytes.
    int createRootDir();
    /// Write dayMsgMap, the attachments and (first form) the recent contacts as a new package: one file per entry, or
    /// files of up to 1000 messages. The second form leaves out what follows the last full 1000 inside the last day. 0,
    /// kPackageExists or kJsonFailed. A file that cannot be written is passed over; the report names it.
    unsigned int wtMsgToFile();
    unsigned int wtMsgToFile2();
    /// For "/a/bb/cccc/dd/e.jpg": the text "cc/_a_bb_cccc_dd_e.jpg" and the directory part "cc" (the fourth segment
    /// less its last two characters). A path with fewer than three "/", a shorter segment or more than 255 bytes gives
    /// empty texts, and so does a directory part of more than 49.
    std::string getSavePath(const char* path, std::string& dirPart);
    /// Copies the attachments of the three path lists from the account into imFileDir. Always 1; the report counts.
    int exportFile();
    /// The text before the last "/" (all of it when there is none).
    std::string baseName(std::string path);
    /// The text after the last "/" (all of it when there is none).
    std::string filName(std::string path);
    /// The path with every "\" as "/", less one "/" at its end. Empty for null and for more than 299 bytes.
    std::string validatePath(const char* path);
    /// Appends the rows of "im_reContact" to reContacts. 0, kDatabaseFailed or kNoTables as a positive number.
    long long readRecontactFromDB();
    /// Writes msgFileDir + "recontact.mg". Always 1; the report names a failure.
    int wtRecontactToFile();

    // --- Package import ---
    /// Reads the package below backupPath into msgMap and reContacts and copies attachments back into the account. 0,
    /// kMissing or kWrongVersion.
    unsigned int rdMsgFromFile();
    /// How many of dir + "msg_0.mg", "msg_1.mg", ... exist before the first that does not.
    int getMsgFileNum(std::string dir);
    /// Replaces reContacts by the contacts of the file. 0, kMissing, kNotJson or kWrongVersion.
    unsigned int rdRecontactFromFile(std::string& path);
    /// Copies the attachments that a body of type 3, 5 or 6 names from imFileDir into the account. 1 when the body is a
    /// JSON object of such a type, 0 otherwise.
    int importFile(std::string body, int msgType);
    /// Write msgMap into the main (or back) database, one transaction per conversation; what a table has already stays.
    /// The first form then trims trimTable and writes reContacts. 0 or kDatabaseFailed.
    unsigned int wtMsgToDB();
    unsigned int wtMsgToBackDB();
    /// Cuts trimTable back to its newest 3000 rows when it has more than 5000. The row count when nothing was cut, else
    /// the result of the delete statement.
    int checkMsgCount();
    /// Merges reContacts into "im_reContact" of the open main database. 0 or kDatabaseFailed.
    unsigned int wtRecontactToDb();
    /// The merge of one contact: inserts it when it is new; else keeps the stored row but for the pin. The result of
    /// the statement that it ran, or 1 when none was needed.
    int isRecontactExsit(imsdk::st_dbReContactBean& record);

    // --- Tree import ---
    /// Appends the decrypted files below `dir` whose names end in `ext` + ".decrypt", after decrypting those that end
    /// in `ext` (a dot and two letters). Always 1.
    int getfiles(std::string dir, std::vector<std::string>& files, std::string ext);
    /// Appends the directories directly in `dir`. Always 1.
    int getsubdirs(std::string dir, std::vector<std::string>& dirs);
    /// The last run of digits before the path's last separator; -1 when there is none or it begins the path.
    long long getTargetIDFromePath(std::string& path);
    /// Removes a directory tree; true when it is gone.
    bool unixdel_dir(char* path);
    /// Import the tree's messages into the main database (with attachments, trimming and recent contacts) or into the
    /// back database, which can remove each decrypted file after use. 0, kDatabaseFailed or kWrongVersion.
    int readMsgFromFileNJ();
    int readMsgFromFileNJBack(bool removeDecrypted);
    /// Reads the tree's recent contacts into reContacts. Always 0.
    int readContactFromFileNJ();
    /// Binds the record to the prepared insert and executes it. 0 or kDatabaseFailed.
    int wtSingleMsgToDbNJ(imsdk::st_dbMessageBean& record, imsdk::dbUtils& db, imsdk::dbCommand& command);
    /// Move the attachments that a message body, or a note's content, names from imFileDir into the user's folders. 1
    /// for a type that carries files, 0 otherwise and when the text does not parse.
    int importFile2(std::string body, int msgType);
    int importFile3(std::string content, int type);
    /// Read the tree's notes and rooms. 0, kWrongVersion, and for rooms kMissing.
    int readNoteFromFileNJ();
    int readRoomFromFileNJ();
    /// Write notes and rooms into the plugin database, without those that it has. 0 or kDatabaseFailed.
    int wtNoteAndRoomToDbNJ();
    int wtAllToDBNJ();
    /// Reads the whole tree: contacts, messages, notes, rooms. 0, kMissing, kDatabaseFailed or kWrongVersion.
    int rdAllFromFileNJ();
};
