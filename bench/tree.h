// Made-up trees for the benchmarks of the tree import.
#pragma once

#include <string>

namespace bench {

/// Writes an account's messages as a tree below `backup`: one file of decrypted messages per conversation, in the
/// order of its table.
void makeMessageTree(const std::string& account, const std::string& backup);

/// Writes a tree of `files` encrypted message files of `bytes` bytes each, a hundred to a folder. Their text is not
/// that of messages: they are for the walk alone.
void makeEncryptedTree(int files, int bytes, const std::string& backup);

}  // namespace bench
