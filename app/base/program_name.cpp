#include "app/base/program_name.h"

namespace app {

const char* programVersion() {
    return CHAT_TRANSFER_VERSION;
}

}  // namespace app
