// The attachments that messages and notes of a tree name, and where an import puts them.
#pragma once

#include <functional>
#include <string>
#include <tuple>

#include "transfer/tree_attachments.h"

namespace app {

/// Where an account keeps the videos of a tree.
inline constexpr const char* kVideoFolder = "/video/";

/// One file: its path below the tree's attachments, and its place in the account.
struct TreeFileName {
    std::string value;
    std::string accountFolder;  ///< "/audio/", "/file/", "/image/" or "/video/"
    std::string accountName;

    bool operator<(const TreeFileName& other) const {
        return std::tie(value, accountFolder) < std::tie(other.value, other.accountFolder);
    }
};

/// Calls visit(file) for each file that a body of the type names.
void forEachTreeFile(const std::string& body, int type, const transfer::TreeFileKeys& keys,
                     const std::function<void(TreeFileName)>& visit);

}  // namespace app
