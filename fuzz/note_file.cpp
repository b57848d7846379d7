// A note file of a tree.
#include "fuzz/tree_records.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::TreeSandbox sandbox;
    fuzz::requireWrittenOnce(sandbox, "notes.nt", std::string(reinterpret_cast<const char*>(data), size),
                             [](dbTrans& transfer) { transfer.readNoteFromFileNJ(); });
    return 0;
}
