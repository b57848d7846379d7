// Memory that runs out when a test says so: operator new of the whole test program, the blocks of JSON values, and
// those of SQLite.
#pragma once

#include <string>

namespace test {

enum class Memory { objects, json, database };

std::string describe(Memory memory);

/// While it lives, the `nth` request (from 1) for memory of the kind on this thread is refused, once or from then on.
class RefusedMemory {
public:
    RefusedMemory(Memory memory, long long nth, bool fromThenOn);
    ~RefusedMemory();
    RefusedMemory(const RefusedMemory&) = delete;
    RefusedMemory& operator=(const RefusedMemory&) = delete;

    /// Whether the request came.
    bool struck() const;
};

}  // namespace test
