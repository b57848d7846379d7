#include "c/chat_transfer.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include "host/base/wipe.h"
#include "transfer/dbTrans.h"
#include "transfer/format/account_folders.h"

namespace {

// Hands progress on to a C function.
class ProgressToC : public ProgressListener {
public:
    void onProgress(long long /*context*/, int stage, int percent, const char* text) override {
        if (function != nullptr) function(context, stage, percent, text);
    }

    chat_transfer_progress function = nullptr;
    void* context = nullptr;
};

}  // namespace

struct chat_transfer {
    chat_transfer() { core.progressListener = &listener; }
    ~chat_transfer() = default;
    chat_transfer(const chat_transfer&) = delete;
    chat_transfer& operator=(const chat_transfer&) = delete;
    chat_transfer(chat_transfer&&) = delete;
    chat_transfer& operator=(chat_transfer&&) = delete;

    ProgressToC listener;
    dbTrans core;
    std::string error;
};

namespace {

// What earlier operations read must not go into the next one.
void forgetRecords(dbTrans& core) {
    core.dataClear();
    core.msgMap.clear();
    core.reContacts.clear();
    core.notes.clear();
    core.rooms.clear();
    core.audioPaths.clear();
    core.filePaths.clear();
    core.imagePaths.clear();
}

// Runs work(core), which gives a result, and lets no exception into C.
template <class Work>
std::uint32_t run(chat_transfer* transfer, Work work) noexcept {
    if (transfer == nullptr) return CHAT_TRANSFER_INVALID;
    try {
        transfer->error.clear();
        forgetRecords(transfer->core);
        return work(transfer->core);
    } catch (const std::bad_alloc&) {
        return CHAT_TRANSFER_OUT_OF_MEMORY;
    } catch (const std::exception& failure) {
        try {
            transfer->error = failure.what();
        } catch (const std::bad_alloc&) {
            return CHAT_TRANSFER_OUT_OF_MEMORY;
        }
        return CHAT_TRANSFER_FAILED;
    }
}

template <class Take>
std::uint32_t set(chat_transfer* transfer, const char* text, Take take) noexcept {
    if (transfer == nullptr || text == nullptr) return CHAT_TRANSFER_INVALID;
    try {
        take(transfer->core, std::string(text));
        return CHAT_TRANSFER_OK;
    } catch (const std::bad_alloc&) {
        return CHAT_TRANSFER_OUT_OF_MEMORY;
    }
}

// A result, and the words of the database when it failed. A recent-contact transaction that was lost fails the import
// too, although the messages are stored.
std::uint32_t resultOf(chat_transfer& transfer, unsigned int code, const imsdk::dbUtils& db) {
    if (code == chattransfer::kSuccess && db.isOpen() && db.transactionFailed()) code = chattransfer::kDatabaseFailed;
    if (code != chattransfer::kSuccess) transfer.error = db.lastError();
    return code;
}

unsigned int exportBy(dbTrans& core, int year, int month, int day, chat_transfer_layout layout) {
    const bool byDay = layout == CHAT_TRANSFER_BY_DAY;
    const unsigned int selected = byDay ? core.rdMsgFromDB(year, month, day) : core.rdMsgFromDB2(year, month, day);
    if (selected != chattransfer::kSuccess) return selected;
    return byDay ? core.wtMsgToFile() : core.wtMsgToFile2();
}

void copyCounts(const TransferReport& report, chat_transfer_counts& counts) {
    counts.messages_selected = report.messagesSelected;
    counts.messages_written = report.messagesWritten;
    counts.files_written = report.messageFilesWritten;
    counts.contacts_written = report.contactsWritten;
    counts.messages_read = report.messagesRead;
    counts.messages_inserted = report.messagesInserted;
    counts.messages_duplicate = report.messagesDuplicate;
    counts.messages_refused = report.messagesRefused;
    counts.messages_trimmed = report.messagesTrimmed;
    counts.tables_created = report.tablesCreated;
    counts.contacts_inserted = report.contactsInserted;
    counts.notes_inserted = report.notesInserted;
    counts.notes_duplicate = report.notesDuplicate;
    counts.rooms_inserted = report.roomsInserted;
    counts.rooms_duplicate = report.roomsDuplicate;
    counts.attachments_done = report.attachmentsDone;
    counts.attachments_present = report.attachmentsPresent;
    counts.attachments_missing = report.attachmentsMissing;
    counts.attachments_refused = report.attachmentsRefused;
    counts.attachments_failed = report.attachmentsFailed;
    counts.left_out = report.skippedCount;
}

const TransferReport::Skipped* leftOut(const chat_transfer* transfer, std::size_t index) {
    if (transfer == nullptr || index >= transfer->core.report.skipped.size()) return nullptr;
    return &transfer->core.report.skipped[index];
}

}  // namespace

// --- Results and life ---

const char* chat_transfer_meaning(std::uint32_t result) {
    switch (result) {
        case CHAT_TRANSFER_INVALID:
            return "an argument is null or outside its values";
        case CHAT_TRANSFER_OUT_OF_MEMORY:
            return "there is not enough memory";
        case CHAT_TRANSFER_FAILED:
            return "a library that this one uses failed";
        default:
            return chattransfer::meaningOf(result);
    }
}

const char* chat_transfer_version(void) {
    return CHAT_TRANSFER_VERSION;
}

chat_transfer* chat_transfer_new(void) {
    return new (std::nothrow) chat_transfer;
}

void chat_transfer_free(chat_transfer* transfer) {
    delete transfer;
}

// --- Settings ---

std::uint32_t chat_transfer_set_account(chat_transfer* transfer, const char* folder) {
    return set(transfer, folder, [](dbTrans& core, const std::string& root) {
        core.userAudioDir = root + chattransfer::kAudioFolder;
        core.userFileDir = root + chattransfer::kFileFolder;
        core.userImageDir = root + chattransfer::kImageFolder;
        core.userVideoDir = root + chattransfer::kVideoFolder;
        core.rootPath = root;
    });
}

std::uint32_t chat_transfer_set_backup(chat_transfer* transfer, const char* folder) {
    return set(transfer, folder, [](dbTrans& core, std::string text) { core.backupPath = std::move(text); });
}

std::uint32_t chat_transfer_set_user(chat_transfer* transfer, const char* user) {
    return set(transfer, user, [](dbTrans& core, std::string text) { core.packageSubDir = std::move(text); });
}

std::uint32_t chat_transfer_set_package_version(chat_transfer* transfer, const char* version) {
    return set(transfer, version, [](dbTrans& core, std::string text) { core.packageVersion = std::move(text); });
}

std::uint32_t chat_transfer_set_key(chat_transfer* transfer, const char* key) {
    return set(transfer, key, [](dbTrans& core, std::string text) {
        core.dbKey.swap(text);
        tools::wipe(text);
    });
}

std::uint32_t chat_transfer_set_trimmed_table(chat_transfer* transfer, const char* table) {
    return set(transfer, table, [](dbTrans& core, std::string text) { core.trimTable = std::move(text); });
}

void chat_transfer_set_progress(chat_transfer* transfer, chat_transfer_progress progress, void* context) {
    if (transfer == nullptr) return;
    transfer->listener.function = progress;
    transfer->listener.context = context;
}

// --- Operations ---

std::uint32_t chat_transfer_export(chat_transfer* transfer, int year, int month, int day, chat_transfer_layout layout) {
    if (layout != CHAT_TRANSFER_BY_DAY && layout != CHAT_TRANSFER_PACKED) return CHAT_TRANSFER_INVALID;
    return run(transfer, [&](dbTrans& core) {
        return resultOf(*transfer, exportBy(core, year, month, day, layout), core.mainDb);
    });
}

std::uint32_t chat_transfer_import_package(chat_transfer* transfer, chat_transfer_database database) {
    if (database != CHAT_TRANSFER_MAIN && database != CHAT_TRANSFER_BACK) return CHAT_TRANSFER_INVALID;
    return run(transfer, [&](dbTrans& core) -> std::uint32_t {
        if (const unsigned int code = core.rdMsgFromFile()) return code;
        const bool intoMain = database == CHAT_TRANSFER_MAIN;
        const unsigned int code = intoMain ? core.wtMsgToDB() : core.wtMsgToBackDB();
        return resultOf(*transfer, code, intoMain ? core.mainDb : core.backDb);
    });
}

std::uint32_t chat_transfer_import_tree(chat_transfer* transfer) {
    return run(transfer, [&](dbTrans& core) -> std::uint32_t {
        const auto read = static_cast<unsigned int>(core.rdAllFromFileNJ());
        if (read != chattransfer::kSuccess) return resultOf(*transfer, read, core.mainDb);
        return resultOf(*transfer, static_cast<unsigned int>(core.wtAllToDBNJ()), core.pluginDb);
    });
}

std::uint32_t chat_transfer_import_tree_back(chat_transfer* transfer, int remove_decrypted) {
    return run(transfer, [&](dbTrans& core) {
        const int code = core.readMsgFromFileNJBack(remove_decrypted != 0);
        return resultOf(*transfer, static_cast<unsigned int>(code), core.backDb);
    });
}

// --- What happened ---

void chat_transfer_get_counts(const chat_transfer* transfer, chat_transfer_counts* counts, std::size_t size) {
    if (counts == nullptr) return;
    chat_transfer_counts all{};
    if (transfer != nullptr) copyCounts(transfer->core.report, all);
    std::memcpy(counts, &all, std::min(size, sizeof(all)));
}

const char* chat_transfer_left_out_name(const chat_transfer* transfer, std::size_t index) {
    const TransferReport::Skipped* skipped = leftOut(transfer, index);
    return skipped != nullptr ? skipped->what.c_str() : "";
}

const char* chat_transfer_left_out_reason(const chat_transfer* transfer, std::size_t index) {
    const TransferReport::Skipped* skipped = leftOut(transfer, index);
    return skipped != nullptr ? skipped->reason.c_str() : "";
}

std::int32_t chat_transfer_left_out_kind(const chat_transfer* transfer, std::size_t index) {
    const TransferReport::Skipped* skipped = leftOut(transfer, index);
    return skipped != nullptr ? static_cast<std::int32_t>(skipped->kind) : 0;
}

const char* chat_transfer_error_text(const chat_transfer* transfer) {
    return transfer != nullptr ? transfer->error.c_str() : "";
}

void chat_transfer_clear(chat_transfer* transfer) {
    if (transfer == nullptr) return;
    forgetRecords(transfer->core);
    transfer->core.report = {};
    transfer->error.clear();
}
