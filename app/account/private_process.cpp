#include "app/account/private_process.h"

#include <sys/resource.h>
#include <sys/stat.h>

namespace app {

void keepPrivate() {
    constexpr mode_t kOthersMayNothing = 077;
    umask(kOthersMayNothing);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
}

}  // namespace app
