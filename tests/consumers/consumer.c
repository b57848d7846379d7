/* A C host outside the tree: an export of an account that is not there fails in words. */
#include <stdio.h>
#include <string.h>

#include "c/chat_transfer.h"

int main(void) {
    chat_transfer* transfer = chat_transfer_new();
    uint32_t result;
    if (transfer == NULL) return 1;
    if (chat_transfer_set_account(transfer, "no-such-account") != CHAT_TRANSFER_OK) return 2;
    if (chat_transfer_set_backup(transfer, "no-such-backup") != CHAT_TRANSFER_OK) return 3;
    result = chat_transfer_export(transfer, 0, 0, 0, CHAT_TRANSFER_BY_DAY);
    if (result != CHAT_TRANSFER_DATABASE_FAILED) return 4;
    if (strlen(chat_transfer_meaning(result)) == 0) return 5;
    printf("%s: %s\n", chat_transfer_version(), chat_transfer_meaning(result));
    chat_transfer_free(transfer);
    return 0;
}
