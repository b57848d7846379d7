// The names under which things grow before they get their own.
//
// A run that is killed leaves such a file or folder behind. Whoever finds one knows by its name that it never became
// whole. The ending is none of those by which the files of a transfer are recognised.
#pragma once

#include <string>
#include <string_view>

namespace tools {

/// ".chat-transfer-<what>.part", ".chat-transfer.part" for an empty `what`: for a thing of which one at most is being
/// made in a folder. The next run finds there what an earlier one left.
[[nodiscard]] std::string temporaryName(std::string_view what);

/// ".chat-transfer-<process>-<number>.part", another one with each call. It may exist all the same, left by a process
/// of the same number.
[[nodiscard]] std::string nextTemporaryName();

/// True for the last component of a path that nextTemporaryName() gave, in this version or an earlier one.
[[nodiscard]] bool isTemporaryName(std::string_view name);

}  // namespace tools
