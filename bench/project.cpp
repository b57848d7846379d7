// The project's side of the comparison: one operation per process, so that all that it costs is measured, the
// transfer object's making and destruction included.
//
//   transfer-bench export ACCOUNT TO          rdMsgFromDB + wtMsgToFile
//   transfer-bench export2 ACCOUNT TO         rdMsgFromDB2 + wtMsgToFile2
//   transfer-bench import ACCOUNT FROM        rdMsgFromFile + wtMsgToDB
//   transfer-bench import-counted ACCOUNT FROM  the same; prints the syncs and the bytes that it wrote
//   transfer-bench walk ACCOUNT FROM          getfiles over the tree's message files, decrypting them
//   transfer-bench read-tree ACCOUNT FROM     reads and parses the tree's decrypted message files, and nothing else
//   transfer-bench import-tree ACCOUNT FROM   readMsgFromFileNJ
//   transfer-bench open ACCOUNT               dbOpen and nothing else
//
// A further argument "keyed" stands for encrypted databases.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bench/counting_vfs.h"
#include "bench/names.h"
#include "host/files/whole_file.h"
#include "transfer/dbTrans.h"
#include "transfer/format/message_text.h"
#include "transfer/format/tree_format.h"

namespace fs = std::filesystem;

namespace bench {
namespace {

void require(unsigned int code, const char* step) {
    if (code != chattransfer::kSuccess) throw std::runtime_error(std::string(step) + " failed");
}

void exportDays(dbTrans& transfer) {
    require(transfer.rdMsgFromDB(kSinceYear, kSinceMonth, kSinceDay), "rdMsgFromDB");
    require(transfer.wtMsgToFile(), "wtMsgToFile");
}

void exportPacked(dbTrans& transfer) {
    require(transfer.rdMsgFromDB2(kSinceYear, kSinceMonth, kSinceDay), "rdMsgFromDB2");
    require(transfer.wtMsgToFile2(), "wtMsgToFile2");
}

void importPackage(dbTrans& transfer) {
    require(transfer.rdMsgFromFile(), "rdMsgFromFile");
    require(transfer.wtMsgToDB(), "wtMsgToDB");
}

void importCounted(dbTrans& transfer) {
    const DiskWrites& writes = countDiskWrites();
    importPackage(transfer);
    std::printf("%lld %lld\n", writes.syncs, writes.bytes);
}

void walkTree(dbTrans& transfer) {
    std::vector<std::string> files;
    transfer.getfiles(chattransfer::treeRoot(transfer.backupPath, transfer.packageSubDir), files,
                      chattransfer::kMessageExtension);
    if (files.empty()) throw std::runtime_error("nothing was decrypted");
}

void readTree(dbTrans& transfer) {
    std::string text;
    long long messages = 0;
    for (const fs::directory_entry& entry :
         fs::recursive_directory_iterator(chattransfer::treeRoot(transfer.backupPath, transfer.packageSubDir))) {
        if (entry.path().extension() != ".decrypt") continue;
        if (!tools::readWholeFile(entry.path(), text)) throw std::runtime_error("cannot read " + entry.path().string());
        for (const chattransfer::MessageDay& day : chattransfer::readMessageFileText(text).days)
            messages += static_cast<long long>(day.messages.size());
    }
    if (messages == 0) throw std::runtime_error("nothing was read");
}

void importTree(dbTrans& transfer) {
    require(static_cast<unsigned int>(transfer.readMsgFromFileNJ()), "readMsgFromFileNJ");
    if (transfer.report.messagesInserted == 0) throw std::runtime_error("nothing was inserted");
}

void openOnly(dbTrans& transfer) {
    if (transfer.dbOpen() == 0) throw std::runtime_error("dbOpen failed");
}

using Operation = void (*)(dbTrans&);

Operation operationOf(const std::string& name) {
    static const std::map<std::string, Operation> operations = {
        {"export", exportDays},      {"export2", exportPacked},
        {"import", importPackage},   {"import-counted", importCounted},
        {"walk", walkTree},          {"read-tree", readTree},
        {"import-tree", importTree}, {"open", openOnly}};
    const auto found = operations.find(name);
    return found != operations.end() ? found->second : nullptr;
}

void runOperation(Operation operation, const std::vector<std::string>& arguments) {
    const bool keyed = arguments.back() == "keyed";
    dbTrans transfer;
    transfer.rootPath = arguments.at(1);
    if (arguments.size() > (keyed ? 3U : 2U)) transfer.backupPath = arguments[2];
    transfer.packageSubDir = kUser;
    transfer.packageVersion = kVersion;
    if (keyed || operation == walkTree) transfer.dbKey = kKeyText;
    transfer.userAudioDir = transfer.rootPath + "/audio/";
    transfer.userFileDir = transfer.rootPath + "/file/";
    transfer.userImageDir = transfer.rootPath + "/image/";
    transfer.userVideoDir = transfer.rootPath + "/video/";
    operation(transfer);
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) try {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const bench::Operation operation = arguments.size() < 2 ? nullptr : bench::operationOf(arguments[0]);
    if (operation == nullptr) {
        std::fputs("usage: transfer-bench OPERATION ACCOUNT [FOLDER] [keyed]\n", stderr);
        return 2;
    }
    bench::runOperation(operation, arguments);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "transfer-bench: %s\n", error.what());
    return 1;
}
