// A host outside the tree: everything that it includes and links comes from the installed or handed-over libraries.
#include <cstdio>
#include <fstream>

#include "c/chat_transfer.h"
#include "host/CAES.h"
#include "host/json.h"
#include "host/tools.h"
#include "transfer/dbTrans.h"

// The usual name for it must not meet a name of ours, the C surface included.
static dbTrans transfer;

int main() {
    const std::string account = "consumer-account";
    tools::del_dir(account.c_str());
    tools::createDir((account + "/db").c_str());
    std::ofstream(account + "/db/imsg.db").flush();

    transfer.rootPath = account;
    transfer.dbKey = "a key";
    if (transfer.dbOpen() == 0) return 1;
    if (transfer.mainDb.excuteNonQuery("create table im_msg_1(msgID BIGINT)") == 0) return 2;

    JSON_Value* message = json_parse_string("{\"messageID\": 9007199254740993}");
    const long long id = json_object_get_int64(json_value_get_object(message), "messageID");
    json_value_free(message);
    tools::del_dir(account.c_str());
    std::printf("%lld\n", id);
    return id == 9007199254740993 ? 0 : 3;
}
