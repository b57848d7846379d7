// The folders that attachments are copied between: the package's, and the account's for each kind. They stay open for
// one loop over attachments.
#pragma once

#include "host/files/confined_files.h"
#include "transfer/attachments/backup_place.h"
#include "transfer/dbTrans.h"
#include "transfer/format/attachment_body.h"

namespace chattransfer {

struct AttachmentFolders {
    explicit AttachmentFolders(const dbTrans& transfer)
        : package(attachmentFolder(transfer)),
          audio(transfer.rootPath + kAudioFolder),
          file(transfer.rootPath + kFileFolder),
          image(transfer.rootPath + kImageFolder) {
        for (tools::ConfinedFolder* folder : {&audio, &file, &image})
            folder->rehearse(transfer.rehearsal);
    }

    tools::ConfinedFolder package;
    tools::ConfinedFolder audio;
    tools::ConfinedFolder file;
    tools::ConfinedFolder image;
};

}  // namespace chattransfer
