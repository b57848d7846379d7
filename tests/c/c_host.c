/* A host in C: every operation of the C surface, on real accounts. `c_host CHECK FOLDER` runs one check; a failed one
 * says in which line, and ends with 1. FOLDER holds what the sample commands have made: "account", "trees" and "key".
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include "c/chat_transfer.h"

#define USER "1000000000000001"

#define CHECK(condition)                                                    \
    do {                                                                    \
        if (!(condition)) {                                                 \
            fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition); \
            exit(1);                                                        \
        }                                                                   \
    } while (0)

static const char* folder;

static const char* at(const char* name) {
    static char paths[8][512];
    static int next = 0;
    char* path = paths[next++ % 8];
    CHECK(snprintf(path, sizeof(paths[0]), "%s/%s", folder, name) < (int)sizeof(paths[0]));
    return path;
}

static void make_file(const char* name) {
    FILE* file = fopen(at(name), "wb");
    CHECK(file != NULL);
    CHECK(fclose(file) == 0);
}

static void make_folder(const char* name) {
    mkdir(at(name), 0700);
}

/* The folders and empty databases of a new account. */
static void make_account(void) {
    const char* folders[] = {"new", "new/db", "new/db/plugin", "new/audio", "new/file", "new/image", "new/video"};
    size_t i;
    for (i = 0; i < sizeof(folders) / sizeof(folders[0]); ++i)
        make_folder(folders[i]);
    make_file("new/db/imsg.db");
    make_file("new/db/backimsg.db");
    make_file("new/db/plugin/kab.db");
}

static chat_transfer* open_transfer(const char* account, const char* backup) {
    chat_transfer* transfer = chat_transfer_new();
    CHECK(transfer != NULL);
    CHECK(chat_transfer_set_account(transfer, at(account)) == CHAT_TRANSFER_OK);
    CHECK(chat_transfer_set_backup(transfer, at(backup)) == CHAT_TRANSFER_OK);
    CHECK(chat_transfer_set_user(transfer, USER) == CHAT_TRANSFER_OK);
    CHECK(chat_transfer_set_package_version(transfer, "1.0") == CHAT_TRANSFER_OK);
    return transfer;
}

/* A transfer into a new account. */
static chat_transfer* open_new_account(const char* backup) {
    make_account();
    return open_transfer("new", backup);
}

static chat_transfer_counts counts_of(const chat_transfer* transfer) {
    chat_transfer_counts counts;
    chat_transfer_get_counts(transfer, &counts, sizeof(counts));
    return counts;
}

static void note_percent(void* context, int stage, int percent, const char* text) {
    (void)stage;
    CHECK(strchr(text, '/') != NULL);
    *(int*)context = percent;
}

/* Exports the sample account; gives the number of messages. */
static int64_t export_account(chat_transfer_layout layout) {
    int percent = -1;
    int64_t written = 0;
    chat_transfer* transfer = open_transfer("account", "backup");
    make_folder("backup");
    chat_transfer_set_progress(transfer, note_percent, &percent);
    CHECK(chat_transfer_export(transfer, 2000, 1, 1, layout) == CHAT_TRANSFER_OK);
    CHECK(percent == 100);
    written = counts_of(transfer).messages_written;
    CHECK(written > 0);
    CHECK(counts_of(transfer).attachments_done > 0);
    chat_transfer_free(transfer);
    return written;
}

static void a_package_goes_out_and_comes_back_once(void) {
    const int64_t written = export_account(CHAT_TRANSFER_BY_DAY);
    chat_transfer* transfer = open_new_account("backup");
    CHECK(chat_transfer_import_package(transfer, CHAT_TRANSFER_MAIN) == CHAT_TRANSFER_OK);
    CHECK(counts_of(transfer).messages_inserted == written);
    CHECK(counts_of(transfer).contacts_inserted > 0);
    chat_transfer_clear(transfer);
    CHECK(counts_of(transfer).messages_inserted == 0);
    CHECK(chat_transfer_import_package(transfer, CHAT_TRANSFER_MAIN) == CHAT_TRANSFER_OK);
    CHECK(counts_of(transfer).messages_inserted == 0);
    CHECK(counts_of(transfer).messages_duplicate == written);
    chat_transfer_free(transfer);
}

static void a_packed_package_goes_into_the_back_database(void) {
    const int64_t written = export_account(CHAT_TRANSFER_PACKED);
    chat_transfer* transfer = open_new_account("backup");
    CHECK(chat_transfer_import_package(transfer, CHAT_TRANSFER_BACK) == CHAT_TRANSFER_OK);
    CHECK(counts_of(transfer).messages_inserted == written);
    chat_transfer_free(transfer);
}

static void read_key(char* key, size_t size) {
    FILE* file = fopen(at("key"), "rb");
    CHECK(file != NULL);
    CHECK(fgets(key, (int)size, file) != NULL);
    CHECK(fclose(file) == 0);
    key[strcspn(key, "\r\n")] = '\0';
}

static void a_tree_arrives_once(void) {
    char key[256];
    int64_t inserted = 0;
    chat_transfer* transfer = open_new_account("trees");
    read_key(key, sizeof(key));
    CHECK(chat_transfer_set_key(transfer, key) == CHAT_TRANSFER_OK);
    CHECK(chat_transfer_import_tree(transfer) == CHAT_TRANSFER_OK);
    inserted = counts_of(transfer).messages_inserted;
    CHECK(inserted > 0);
    CHECK(counts_of(transfer).notes_inserted > 0);
    CHECK(counts_of(transfer).rooms_inserted > 0);
    CHECK(counts_of(transfer).attachments_done > 0);
    chat_transfer_clear(transfer);
    CHECK(chat_transfer_import_tree(transfer) == CHAT_TRANSFER_OK);
    CHECK(counts_of(transfer).messages_inserted == 0);
    CHECK(counts_of(transfer).messages_duplicate == inserted);
    CHECK(counts_of(transfer).notes_inserted == 0);
    CHECK(chat_transfer_import_tree_back(transfer, 1) == CHAT_TRANSFER_OK);
    CHECK(counts_of(transfer).messages_inserted == inserted);
    chat_transfer_free(transfer);
}

static void failures_have_a_result_and_words(void) {
    chat_transfer* transfer = open_transfer("nowhere", "nowhere");
    CHECK(chat_transfer_export(transfer, 2000, 1, 1, CHAT_TRANSFER_BY_DAY) == CHAT_TRANSFER_DATABASE_FAILED);
    CHECK(strlen(chat_transfer_error_text(transfer)) > 0);
    CHECK(strcmp(chat_transfer_meaning(CHAT_TRANSFER_DATABASE_FAILED), "a database could not be opened or written") ==
          0);
    CHECK(chat_transfer_import_package(transfer, CHAT_TRANSFER_MAIN) == CHAT_TRANSFER_MISSING);
    CHECK(chat_transfer_import_tree(transfer) == CHAT_TRANSFER_MISSING);
    CHECK(chat_transfer_import_tree_back(transfer, 0) == CHAT_TRANSFER_DATABASE_FAILED);
    chat_transfer_free(transfer);
    export_account(CHAT_TRANSFER_BY_DAY);
    transfer = open_transfer("account", "backup");
    CHECK(chat_transfer_export(transfer, 2000, 1, 1, CHAT_TRANSFER_BY_DAY) == CHAT_TRANSFER_PACKAGE_EXISTS);
    CHECK(chat_transfer_set_package_version(transfer, "9") == CHAT_TRANSFER_OK);
    CHECK(chat_transfer_import_package(transfer, CHAT_TRANSFER_MAIN) == CHAT_TRANSFER_WRONG_VERSION);
    CHECK(counts_of(transfer).left_out > 0);
    CHECK(strlen(chat_transfer_left_out_name(transfer, 0)) > 0);
    CHECK(strlen(chat_transfer_left_out_reason(transfer, 0)) > 0);
    CHECK(chat_transfer_left_out_kind(transfer, 0) == CHAT_TRANSFER_LEFT_OUT_CONTACT_FILE_OTHER_VERSION);
    CHECK(chat_transfer_left_out_kind(transfer, 1) == CHAT_TRANSFER_LEFT_OUT_MESSAGE_FILE_OTHER_VERSION);
    CHECK(strlen(chat_transfer_left_out_name(transfer, 100000)) == 0);
    CHECK(chat_transfer_left_out_kind(transfer, 100000) == 0);
    chat_transfer_free(transfer);
}

static void null_arguments_are_refused(void) {
    chat_transfer_counts counts;
    chat_transfer* transfer = chat_transfer_new();
    CHECK(chat_transfer_set_key(transfer, NULL) == CHAT_TRANSFER_INVALID);
    CHECK(chat_transfer_set_account(NULL, "x") == CHAT_TRANSFER_INVALID);
    CHECK(chat_transfer_export(NULL, 2000, 1, 1, CHAT_TRANSFER_BY_DAY) == CHAT_TRANSFER_INVALID);
    CHECK(chat_transfer_export(transfer, 2000, 1, 1, (chat_transfer_layout)7) == CHAT_TRANSFER_INVALID);
    CHECK(chat_transfer_import_package(transfer, (chat_transfer_database)7) == CHAT_TRANSFER_INVALID);
    CHECK(chat_transfer_import_tree(NULL) == CHAT_TRANSFER_INVALID);
    CHECK(strlen(chat_transfer_error_text(NULL)) == 0);
    CHECK(chat_transfer_left_out_kind(NULL, 0) == 0);
    CHECK(strlen(chat_transfer_meaning(CHAT_TRANSFER_INVALID)) > 0);
    memset(&counts, 0x55, sizeof(counts));
    chat_transfer_get_counts(transfer, &counts, sizeof(counts.messages_selected));
    CHECK(counts.messages_selected == 0);
    CHECK(counts.left_out != 0);
    chat_transfer_set_progress(NULL, NULL, NULL);
    chat_transfer_clear(NULL);
    chat_transfer_free(NULL);
    chat_transfer_free(transfer);
}

static const struct {
    const char* name;
    void (*run)(void);
} checks[] = {
    {"APackageGoesOutAndComesBackOnce", a_package_goes_out_and_comes_back_once},
    {"APackedPackageGoesIntoTheBackDatabase", a_packed_package_goes_into_the_back_database},
    {"ATreeArrivesOnce", a_tree_arrives_once},
    {"FailuresHaveAResultAndWords", failures_have_a_result_and_words},
    {"NullArgumentsAreRefused", null_arguments_are_refused},
};

int main(int argc, char** argv) {
    size_t i;
    CHECK(argc == 3);
    folder = argv[2];
    for (i = 0; i < sizeof(checks) / sizeof(checks[0]); ++i) {
        if (strcmp(checks[i].name, argv[1]) == 0) {
            checks[i].run();
            return 0;
        }
    }
    fprintf(stderr, "no such check: %s\n", argv[1]);
    return 2;
}
