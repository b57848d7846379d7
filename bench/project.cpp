// The project's side of the comparison: one operation per process, so that all that it costs is measured, the
// transfer object's making and destruction included. A further argument "keyed" stands for encrypted databases.
#include <sqlite3.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/names.h"
#include "host/files/whole_file.h"
#include "transfer/dbTrans.h"
#include "transfer/format/message_text.h"
#include "transfer/format/tree_format.h"

namespace fs = std::filesystem;

namespace bench {
namespace {

void require(bool success, const std::string& step) {
    if (!success) throw std::runtime_error(step + " failed");
}

void exportDays(dbTrans& transfer) {
    require(transfer.rdMsgFromDB(kSinceYear, kSinceMonth, kSinceDay) == chattransfer::kSuccess, "rdMsgFromDB");
    require(transfer.wtMsgToFile() == chattransfer::kSuccess, "wtMsgToFile");
}

void exportPacked(dbTrans& transfer) {
    require(transfer.rdMsgFromDB2(kSinceYear, kSinceMonth, kSinceDay) == chattransfer::kSuccess, "rdMsgFromDB2");
    require(transfer.wtMsgToFile2() == chattransfer::kSuccess, "wtMsgToFile2");
}

void importPackage(dbTrans& transfer) {
    require(transfer.rdMsgFromFile() == chattransfer::kSuccess, "rdMsgFromFile");
    require(transfer.wtMsgToDB() == chattransfer::kSuccess, "wtMsgToDB");
}

// Finds the tree's message files, decrypting them.
void walkTree(dbTrans& transfer) {
    transfer.dbKey = kKeyText;
    std::vector<std::string> files;
    transfer.getfiles(chattransfer::treeRoot(transfer.backupPath, transfer.packageSubDir), files,
                      chattransfer::kMessageExtension);
    require(!files.empty(), "getfiles");
}

// Reads and parses the tree's decrypted message files, and nothing else.
void readTree(dbTrans& transfer) {
    std::string text;
    std::size_t days = 0;
    for (const fs::directory_entry& entry :
         fs::recursive_directory_iterator(chattransfer::treeRoot(transfer.backupPath, transfer.packageSubDir))) {
        if (entry.path().extension() != ".decrypt") continue;
        require(tools::readWholeFile(entry.path(), text), entry.path().string());
        days += chattransfer::readMessageFileText(text).days.size();
    }
    require(days != 0, "reading");
}

// Prints the number of messages.
void importTree(dbTrans& transfer) {
    require(static_cast<unsigned int>(transfer.readMsgFromFileNJ()) == chattransfer::kSuccess, "readMsgFromFileNJ");
    std::printf("%lld\n", static_cast<long long>(transfer.report.messagesInserted));
}

void openOnly(dbTrans& transfer) {
    require(transfer.dbOpen() != 0, "dbOpen");
}

const std::map<std::string, void (*)(dbTrans&)> kOperations = {
    {"export", exportDays},  {"export2", exportPacked},   {"import", importPackage}, {"walk", walkTree},
    {"read-tree", readTree}, {"import-tree", importTree}, {"open", openOnly}};

void runOperation(const std::vector<std::string>& arguments) {
    const bool keyed = arguments.back() == "keyed";
    dbTrans transfer;
    transfer.rootPath = arguments.at(1);
    if (arguments.size() > (keyed ? 3U : 2U)) transfer.backupPath = arguments[2];
    transfer.packageSubDir = kUser;
    transfer.packageVersion = kVersion;
    if (keyed) transfer.dbKey = kKeyText;
    transfer.userAudioDir = transfer.rootPath + "/audio/";
    transfer.userFileDir = transfer.rootPath + "/file/";
    transfer.userImageDir = transfer.rootPath + "/image/";
    transfer.userVideoDir = transfer.rootPath + "/video/";
    kOperations.at(arguments[0])(transfer);
}

void printVersions() {
#ifdef __clang__
    std::printf("%s\n%s\n", __VERSION__, sqlite3_libversion());
#else
    std::printf("GCC %s\n%s\n", __VERSION__, sqlite3_libversion());
#endif
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) try {
    if (argc == 1) {
        bench::printVersions();
    } else {
        bench::runOperation({argv + 1, argv + argc});
    }
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "transfer-bench: %s\n", error.what());
    return 1;
}
