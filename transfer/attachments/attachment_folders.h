// The folders that attachments are copied between: the package's, and the account's for each kind. They stay open for
// one loop over attachments.
#pragma once

#include <string>

#include "host/files/confined_files.h"
#include "transfer/attachments/backup_place.h"
#include "transfer/format/account_folders.h"

namespace chattransfer {

struct AttachmentFolders {
    AttachmentFolders(const AttachmentSource& source, const std::string& account)
        : package(attachmentFolder(source)),
          audio(account + kAudioFolder),
          file(account + kFileFolder),
          image(account + kImageFolder) {
        for (tools::ConfinedFolder* folder : {&audio, &file, &image})
            folder->rehearse(source.dryRun);
    }

    tools::ConfinedFolder package;
    tools::ConfinedFolder audio;
    tools::ConfinedFolder file;
    tools::ConfinedFolder image;
};

}  // namespace chattransfer
