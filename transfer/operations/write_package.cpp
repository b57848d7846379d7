// Export, second step: writes what was selected as a backup package.
#include <algorithm>
#include <iterator>

#include "host/files/confined_files.h"
#include "host/tools.h"
#include "transfer/format/package_documents.h"
#include "transfer/format/package_format.h"
#include "transfer/operations/parts_of.h"
#include "transfer/package/day_entries.h"
#include "transfer/package/message_files.h"

JSON_Value* dbTrans::makeJson(int mode, imsdk::st_dbMessageBean* msg) {
    if (mode == 0) return chattransfer::makeFileHead(packageVersion).release();
    if (mode == 1) return chattransfer::makeMessageList().release();
    return mode == 2 && msg != nullptr ? chattransfer::makeMessage(*msg).release() : nullptr;
}

int dbTrans::createRootDir() {
    // Hosts know this limit: it keeps the paths below the root within the readers' own.
    constexpr std::size_t kRootSize = 100;
    const std::string root = chattransfer::packageRoot(backupPath);
    if (root.size() >= kRootSize || tools::confinedNameTaken(backupPath + "/", chattransfer::kPackageName)) return 0;
    msgFileDir = root + chattransfer::kMessagesFolder + packageSubDir + "/";
    imFileDir = root + chattransfer::kAttachmentsFolder + packageSubDir + "/";
    tools::createDir(msgFileDir.c_str());
    tools::createDir(imFileDir.c_str());
    return 1;
}

unsigned int dbTrans::wtMsgToFile() {
    if (createRootDir() == 0) return chattransfer::kPackageExists;
    chattransfer::Progress progress = chattransfer::progressOf(*this);
    chattransfer::MessageFiles files(msgFileDir, packageVersion, report);
    const auto entries = static_cast<long long>(dayMsgMap.size());
    for (const auto& [key, messages] : dayMsgMap) {
        const chattransfer::CalendarDay day = chattransfer::dayOfKey(key, ":");
        if (!files.begin() || !files.addDay(day, messages.data(), messages.data() + messages.size()))
            return chattransfer::kJsonFailed;
        files.finish();
        progress.reportStep(1, files.number(), entries, files.number() == entries);
    }
    exportFile();
    wtRecontactToFile();
    return chattransfer::kSuccess;
}

unsigned int dbTrans::wtMsgToFile2() {
    if (createRootDir() == 0) return chattransfer::kPackageExists;
    chattransfer::Progress progress = chattransfer::progressOf(*this);
    chattransfer::MessageFiles files(msgFileDir, packageVersion, report);
    const auto entries = static_cast<long long>(dayMsgMap.size());
    std::size_t room = 0;    // messages that still fit into the current file; 0: no file is begun
    std::size_t resume = 0;  // first message of the entry that is not written yet
    long long passes = 0;
    for (auto entry = dayMsgMap.begin(); entry != dayMsgMap.end();) {
        if (room == 0) {
            if (!files.begin()) return chattransfer::kJsonFailed;
            room = chattransfer::kMessagesPerFile;
        }
        const chattransfer::MessagesOfDay& messages = entry->second;
        const std::size_t taken = std::min(room, messages.size() - resume);
        const imsdk::st_dbMessageBean* first = messages.data() + resume;
        if (!files.addDay(chattransfer::dayOfKey(entry->first, "_"), first, first + taken))
            return chattransfer::kJsonFailed;
        room -= taken;
        const auto next = std::next(entry);
        if (room == 0 || next == dayMsgMap.end()) files.finish();
        // A file that is full in the last day ends the export, with the rest of that day left out. Elsewhere the next
        // file begins with this day again, even when nothing of it is left. Readers know both.
        if (room == 0 && next != dayMsgMap.end()) {
            resume += taken;
            continue;
        }
        resume = 0;
        entry = next;
        progress.reportStep(1, passes, entries, passes == entries);
        ++passes;
    }
    exportFile();
    return chattransfer::kSuccess;
}
