// What the rows alone cost: the message tables of one account written into another by the database itself, in one
// transaction.
//
//   floor-insert FROM-ACCOUNT ACCOUNT
//
// The second account's database is encrypted, as it is where trees are.
#include <cstdio>
#include <exception>
#include <string>

#include "bench/names.h"
#include "bench/sqlite_handles.h"
#include "host/base/fixed_text.h"
#include "transfer/tables/message_table.h"

namespace bench {
namespace {

void insertRows(const std::string& from, const std::string& account) {
    const Database source = openDatabase(from + "/db/imsg.db");
    const Database target = openDatabase(account + "/db/imsg.db", false, kKeyText);
    run(target.get(), "attach '" + from + "/db/imsg.db' as source key ''");
    const Statement tables =
        prepare(source.get(), "select name from sqlite_master where type='table' and name glob 'im_msg_*'");
    Transaction transaction(target.get());
    while (step(tables.get())) {
        const std::string table(textOf(tables.get(), 0));
        run(target.get(), tools::FixedText<1024>(chattransfer::kCreateMessageTable, table.c_str()).text());
        run(target.get(), "insert into main." + table + " select * from source." + table);
    }
    transaction.commit();
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) try {
    if (argc != 3) {
        std::fputs("usage: floor-insert FROM-ACCOUNT ACCOUNT\n", stderr);
        return 2;
    }
    bench::insertRows(argv[1], argv[2]);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "floor-insert: %s\n", error.what());
    return 1;
}
