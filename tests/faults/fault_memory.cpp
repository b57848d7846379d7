#include "tests/faults/fault_memory.h"

#include <sqlite3.h>

#include <array>
#include <cstdlib>
#include <new>

#include "host/json.h"

namespace test {
namespace {

struct Plan {
    bool armed = false;
    Memory memory = Memory::objects;
    long long nth = 0;
    bool fromThenOn = false;
    long long seen = 0;
};
thread_local Plan plan;

bool refuses(Memory memory) {
    if (!plan.armed || plan.memory != memory) return false;
    ++plan.seen;
    return plan.seen == plan.nth || (plan.seen > plan.nth && plan.fromThenOn);
}

void* takeJson(std::size_t size) {
    return refuses(Memory::json) ? nullptr : std::malloc(size);
}

sqlite3_mem_methods databaseMemory;

void* takeForDatabase(int size) {
    return refuses(Memory::database) ? nullptr : databaseMemory.xMalloc(size);
}
void* takeMoreForDatabase(void* block, int size) {
    return refuses(Memory::database) ? nullptr : databaseMemory.xRealloc(block, size);
}

// SQLite takes new functions only while nothing of it is in use, that is before the first database.
const bool kDatabaseAsksHere = [] {
    sqlite3_config(SQLITE_CONFIG_GETMALLOC, &databaseMemory);
    sqlite3_mem_methods ours = databaseMemory;
    ours.xMalloc = takeForDatabase;
    ours.xRealloc = takeMoreForDatabase;
    return sqlite3_config(SQLITE_CONFIG_MALLOC, &ours) == SQLITE_OK;
}();

}  // namespace

std::string describe(Memory memory) {
    constexpr std::array<const char*, 3> kWords = {"no memory", "no memory for JSON", "no memory for the database"};
    return kWords.at(static_cast<std::size_t>(memory));
}

RefusedMemory::RefusedMemory(Memory memory, long long nth, bool fromThenOn) {
    if (!kDatabaseAsksHere) std::abort();
    json_set_allocation_functions(takeJson, std::free);
    plan = {true, memory, nth, fromThenOn, 0};
}
RefusedMemory::~RefusedMemory() {
    plan.armed = false;
    json_set_allocation_functions(nullptr, nullptr);
}
bool RefusedMemory::struck() const {
    return plan.seen >= plan.nth;
}

}  // namespace test

// NOLINTBEGIN(misc-new-delete-overloads): the array, aligned and nothrow forms of the library call these
void* operator new(std::size_t size) {
    void* block = test::refuses(test::Memory::objects) ? nullptr : std::malloc(size > 0 ? size : 1);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}
// NOLINTEND(misc-new-delete-overloads)
