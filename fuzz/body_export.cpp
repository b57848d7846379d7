// The body of a message with attachments, on the way out: whatever it names, only files of the account are copied, and
// only into the package.
#include <array>

#include "fuzz/property.h"
#include "fuzz/sandbox.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Sandbox sandbox;
    constexpr std::array<int, 3> kTypes = {3, 5, 6};
    for (const char* folder : {"/audio", "/image", "/file"})
        fuzz::Sandbox::write(sandbox.account() + folder + "/im/2024/0630/a.bin", "the user's own");
    fuzz::Input input(data, size);
    const int type = kTypes.at(input.takeByte() % kTypes.size());
    dbTrans transfer;
    sandbox.enter(transfer);
    transfer.imFileDir = sandbox.packageFiles();
    transfer.parseUrl(input.rest(), type);
    transfer.exportFile();
    sandbox.requireUntouched(sandbox.backup());
    fuzz::Sandbox::empty(sandbox.packageFiles());
    return 0;
}
