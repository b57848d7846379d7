// Made-up trees for the benchmarks of the tree import.
#pragma once

#include <string>

namespace bench {

struct MessageTreePlan {
    int perFile = 0;         ///< messages in a file at most; 0: one file per conversation
    bool encrypted = false;  ///< encrypted files instead of decrypted ones
};

/// Writes an account's messages as a tree below `backup`, those of each conversation in the order of its table.
void makeMessageTree(const std::string& account, const MessageTreePlan& plan, const std::string& backup);

/// Writes a tree of `files` encrypted message files of `bytes` bytes each, a hundred to a folder. Their text is not
/// that of messages: they are for the walk alone.
void makeEncryptedTree(int files, int bytes, const std::string& backup);

}  // namespace bench
