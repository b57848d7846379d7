// What every fuzz target states about its input, beyond "it does not crash".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace fuzz {

/// Ends the process with the property's words when it does not hold: the fuzzer keeps the input then.
void require(bool holds, const char* property);

/// The bytes of one input, split as the targets need them.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : bytes_(reinterpret_cast<const char*>(data), size) {}

    /// Takes the first byte; 0 when there is none.
    [[nodiscard]] unsigned takeByte();

    /// All that has not been taken.
    [[nodiscard]] const std::string& rest() const { return bytes_; }

private:
    std::string bytes_;
};

}  // namespace fuzz

/// What libFuzzer, and the program that replays the corpus, call for each input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
