// The transfer object as this program uses it.
#pragma once

#include "app/secret_text.h"
#include "transfer/dbTrans.h"

namespace app {

/// Wipes its copy of the key when it ends.
class HostTransfer : public dbTrans {
public:
    HostTransfer() = default;
    ~HostTransfer() override { wipe(dbKey); }
    HostTransfer(const HostTransfer&) = delete;
    HostTransfer& operator=(const HostTransfer&) = delete;
    HostTransfer(HostTransfer&&) = delete;
    HostTransfer& operator=(HostTransfer&&) = delete;
};

}  // namespace app
