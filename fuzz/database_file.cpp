// A database file from a stranger: an export of it does not crash, stays in its folder, and what it writes can be read.
#include <filesystem>

#include "fuzz/property.h"
#include "fuzz/sandbox.h"
#include "host/files/whole_file.h"
#include "transfer/format/message_text.h"

namespace {

using fuzz::require;

void requireReadable(const std::string& folder, int files) {
    for (int number = 0; number < files; ++number) {
        std::string text;
        require(tools::readWholeFile(chattransfer::messageFilePath(folder, number), text), "a written file is there");
        require(chattransfer::readMessageFileText(text).hasDays, "a written file can be read");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Sandbox sandbox;
    sandbox.makeDatabase("db/backimsg.db");
    fuzz::Sandbox::write(sandbox.account() + "/db/imsg.db", std::string(reinterpret_cast<const char*>(data), size));
    std::filesystem::remove_all(sandbox.backup() + "/qelmsg_0");
    dbTrans transfer;
    sandbox.enter(transfer);
    if (transfer.rdMsgFromDB(0, 0, 0) == chattransfer::kSuccess && transfer.wtMsgToFile() == chattransfer::kSuccess) {
        requireReadable(transfer.msgFileDir, static_cast<int>(transfer.report.messageFilesWritten));
    }
    sandbox.requireUntouched(sandbox.backup());
    return 0;
}
