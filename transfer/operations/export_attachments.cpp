// Export, last step: copies the attachments of the selected messages.
#include <array>

#include "host/files/flush.h"
#include "host/tools.h"
#include "transfer/attachments/attachment_count.h"
#include "transfer/attachments/attachment_export.h"
#include "transfer/operations/parts_of.h"

int dbTrans::exportFile() {
    struct Pass {
        const std::vector<std::string>& paths;
        tools::ConfinedFolder& folder;
    };
    chattransfer::AttachmentFolders folders = chattransfer::attachmentFoldersOf(*this);
    const std::array<Pass, 3> passes = {
        {{audioPaths, folders.audio}, {filePaths, folders.file}, {imagePaths, folders.image}}};
    const std::size_t attachments = audioPaths.size() + filePaths.size() + imagePaths.size();
    attachmentTotal = static_cast<long long>(attachments);
    chattransfer::Progress progress = chattransfer::progressOf(*this);
    long long position = 0;
    for (const Pass& pass : passes) {
        for (const std::string& path : pass.paths) {
            chattransfer::countAttachment(report, path,
                                          chattransfer::exportAttachment(pass.folder, folders.package, path));
            progress.reportStep(2, position, attachmentTotal, false);
            ++position;
        }
    }
    // Message files and attachments become durable together: a flush for each would cost more than the export.
    const bool anythingToFlush = tools::presenceOf(imFileDir) != tools::Presence::absent;
    if (anythingToFlush && !tools::flushFileSystem(imFileDir))
        report.skip(imFileDir, chattransfer::Omission::packageNotFlushed);
    progress.report(2, attachmentTotal, attachmentTotal);
    return 1;
}
