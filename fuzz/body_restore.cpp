// The body of a message with attachments, on the way in: only files of the package are copied, and only into the
// account.
#include <array>

#include "fuzz/property.h"
#include "fuzz/sandbox.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Sandbox sandbox;
    constexpr std::array<int, 3> kTypes = {3, 5, 6};
    fuzz::Sandbox::write(sandbox.packageFiles() + "20/_im_a_2024_a.bin", "out of the package");
    fuzz::Sandbox::write(sandbox.packageFiles() + "a.bin", "out of the package");
    fuzz::Input input(data, size);
    const int type = kTypes.at(input.takeByte() % kTypes.size());
    dbTrans transfer;
    sandbox.enter(transfer);
    transfer.imFileDir = sandbox.packageFiles();
    transfer.importFile(input.rest(), type);
    sandbox.requireUntouched(sandbox.account());
    for (const char* folder : {"/audio", "/image", "/file"})
        fuzz::Sandbox::empty(sandbox.account() + folder);
    return 0;
}
