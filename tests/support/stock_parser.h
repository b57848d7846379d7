// The opponent of our own reading of JSON: the library's parser.
#pragma once

#include <cstdlib>
#include <string>
#include <unordered_set>

#include "host/json/json_owner.h"
#include "host/json/json_stock.h"

namespace test {

// The blocks of the parse that runs.
class StockBlocks {
public:
    static void* take(std::size_t size) { return *blocks_.insert(std::malloc(size)).first; }
    static void giveBack(void* block) {
        blocks_.erase(block);
        std::free(block);
    }
    static void giveAllBack() {
        for (void* block : blocks_)
            std::free(block);
        forgetAll();
    }
    static void forgetAll() { blocks_.clear(); }

private:
    static inline std::unordered_set<void*> blocks_;
};

/// The tree that the library makes of `text`; null when it refuses. For one thread at a time.
inline tools::JsonDocument parseByLibrary(const std::string& text,
                                          JSON_Value* (*parse)(const char*) = chat_transfer_stock_parse_string) {
    json_set_allocation_functions(StockBlocks::take, StockBlocks::giveBack);
    tools::JsonDocument document(parse(text.c_str()));
    json_set_allocation_functions(nullptr, nullptr);
    // A refused text has to leave nothing behind, but the library forgets the block of a name with a NUL.
    document ? StockBlocks::forgetAll() : StockBlocks::giveAllBack();
    return document;
}

}  // namespace test
