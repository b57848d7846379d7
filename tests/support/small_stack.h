// Work on a thread with as little stack as phones give to theirs.
#pragma once

#include <cstddef>
#include <functional>

namespace test {

inline constexpr std::size_t kSmallStack = std::size_t{256} * 1024;

/// False where the frames of instrumented code are several times as large as those of the product, so that a small
/// stack shows nothing.
constexpr bool smallStackIsMeaningful() {
#if defined(__SANITIZE_ADDRESS__) || !defined(NDEBUG)
    return false;
#else
    return true;
#endif
}

/// Less of it, for JSON: optimised, also a parser that recurses for each level gets by with the whole, and is found out
/// only here. What frees a tree does recurse, in larger frames on 64-bit ARM.
#ifdef __aarch64__
inline constexpr std::size_t kStackForJson = kSmallStack / 4 * 3;
#else
inline constexpr std::size_t kStackForJson = kSmallStack / 2;
#endif

/// Runs work() to its end on a thread with a stack of `size` bytes.
void onSmallStack(const std::function<void()>& work, std::size_t size = kSmallStack);

}  // namespace test
