// The body of a tree's message, or the content of a note: only files of the tree are moved, and only into the user's
// folders.
#include <array>

#include "fuzz/property.h"
#include "fuzz/sandbox.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Sandbox sandbox;
    constexpr std::array<int, 5> kTypes = {3, 5, 6, 28, 89};
    const std::string attachments = sandbox.tree() + "imfiles/";
    fuzz::Sandbox::write(attachments + "a.bin", "out of the tree");
    fuzz::Sandbox::write(attachments + "im/2024/a.jpg", "out of the tree");
    fuzz::Input input(data, size);
    const unsigned choice = input.takeByte();
    const int type = kTypes.at(choice / 2 % kTypes.size());
    dbTrans transfer;
    sandbox.enter(transfer);
    transfer.imFileDir = attachments;
    if (choice % 2 == 0) {
        transfer.importFile2(input.rest(), type);
    } else {
        transfer.importFile3(input.rest(), type);
    }
    sandbox.requireUntouched(sandbox.account());
    for (const char* folder : {"/audio", "/image", "/file", "/video"})
        fuzz::Sandbox::empty(sandbox.account() + folder);
    return 0;
}
