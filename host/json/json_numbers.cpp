#include "host/json/json_numbers.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "host/json/json_literal.h"

namespace {

// In front of every block; as wide as the strictest alignment, so that the block behind it stays aligned.
struct alignas(std::max_align_t) BlockHeader {
    long long exact;
    bool hasExact;
    // The neighbours among the blocks of one parse; null at the ends and for blocks that no parse made.
    BlockHeader* previous;
    BlockHeader* next;
};

// The blocks of the parse that runs on this thread.
struct ParseBlocks {
    bool running = false;
    BlockHeader* newest = nullptr;
};
thread_local ParseBlocks parseBlocks;

struct PendingLiteral {
    long long exact = 0;
    bool set = false;
};
thread_local PendingLiteral pendingLiteral;

struct Source {
    void* (*allocate)(std::size_t) = std::malloc;
    void (*release)(void*) = std::free;
};
Source source;

BlockHeader* headerOf(void* block) {
    return static_cast<BlockHeader*>(block) - 1;
}
const BlockHeader* headerOf(const void* block) {
    return static_cast<const BlockHeader*>(block) - 1;
}

void link(BlockHeader* header) {
    header->previous = nullptr;
    header->next = parseBlocks.running ? parseBlocks.newest : nullptr;
    if (!parseBlocks.running) return;
    if (header->next != nullptr) header->next->previous = header;
    parseBlocks.newest = header;
}

void unlink(BlockHeader* header) {
    if (header->previous != nullptr) header->previous->next = header->next;
    if (header->next != nullptr) header->next->previous = header->previous;
    if (parseBlocks.newest == header) parseBlocks.newest = header->next;
}

}  // namespace

double chatTransferJsonToDouble(const char* text, char** end) {
    const tools::detail::JsonLiteral literal = tools::detail::readJsonLiteral(text, text);
    pendingLiteral = {literal.exact, literal.hasExact};
    *end = const_cast<char*>(literal.end);  // NOLINT(cppcoreguidelines-pro-type-const-cast): strtod's own signature
    return literal.value;
}

void* chatTransferJsonAllocate(size_t size) {
    const PendingLiteral literal = pendingLiteral;
    pendingLiteral.set = false;
    if (size > SIZE_MAX - sizeof(BlockHeader)) return nullptr;
    auto* header = static_cast<BlockHeader*>(source.allocate(sizeof(BlockHeader) + size));
    if (header == nullptr) return nullptr;
    header->exact = literal.exact;
    header->hasExact = literal.set;
    link(header);
    return header + 1;
}

void chatTransferJsonRelease(void* block) {
    if (block == nullptr) return;
    unlink(headerOf(block));
    source.release(headerOf(block));
}

void chatTransferJsonBeginParse(void) {
    parseBlocks = {true, nullptr};
}

void chatTransferJsonEndParse(int succeeded) {
    parseBlocks.running = false;
    while (succeeded == 0 && parseBlocks.newest != nullptr)
        chatTransferJsonRelease(parseBlocks.newest + 1);
    parseBlocks.newest = nullptr;
}

void chatTransferJsonSetSource(void* (*allocate)(size_t), void (*release)(void*)) {
    source.allocate = allocate != nullptr ? allocate : std::malloc;
    source.release = release != nullptr ? release : std::free;
}

int chatTransferJsonExactValue(const void* block, long long* exact) {
    const BlockHeader* header = headerOf(block);
    if (header->hasExact) *exact = header->exact;
    return header->hasExact ? 1 : 0;
}

void chatTransferJsonSetExactValue(void* block, long long exact) {
    headerOf(block)->exact = exact;
    headerOf(block)->hasExact = true;
}

void chatTransferJsonCopyExactValue(const void* from, void* to) {
    headerOf(to)->exact = headerOf(from)->exact;
    headerOf(to)->hasExact = headerOf(from)->hasExact;
}
