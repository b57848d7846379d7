// The least that a host does: export an account into a package, and import the package into another account.
//
// Usage: minimal_host <account> <backup folder> <other account> <user id>
#include <iostream>
#include <string>

#include "transfer/dbTrans.h"

namespace {

class PrintingListener : public ProgressListener {
public:
    void onProgress(long long /*context*/, int stage, int percent, const char* text) override {
        std::cout << "stage " << stage << ": " << percent << " % (" << text << ")\n";
    }
};

// Where the account and the package are, and whose messages they hold.
void prepare(dbTrans& transfer, ProgressListener& listener, const std::string& account, char* arguments[]) {
    transfer.rootPath = account;
    transfer.backupPath = arguments[2];
    transfer.packageSubDir = arguments[4];
    transfer.packageVersion = "1.0";
    transfer.progressListener = &listener;
}

int fail(const char* step, unsigned int code) {
    std::cerr << step << " failed: 0x" << std::hex << code << "\n";
    return 1;
}

}  // namespace

int main(int count, char* arguments[]) {
    if (count != 5) return fail("reading the arguments", 0);
    PrintingListener listener;

    dbTrans exporter;
    prepare(exporter, listener, arguments[1], arguments);
    if (const unsigned int code = exporter.rdMsgFromDB(2019, 1, 1)) return fail("selecting messages", code);
    if (const unsigned int code = exporter.wtMsgToFile()) return fail("writing the package", code);

    dbTrans importer;
    prepare(importer, listener, arguments[3], arguments);
    if (const unsigned int code = importer.rdMsgFromFile()) return fail("reading the package", code);
    if (const unsigned int code = importer.wtMsgToDB()) return fail("writing the messages", code);
    std::cout << importer.report.messagesInserted << " messages arrived\n";
    return 0;
}
