// The user's folders for one fuzz target, with somebody else's beside them. Whatever an input says, an operation stays
// inside the user's, and what stands beside them is never copied in.
#pragma once

#include <string>

#include "transfer/dbTrans.h"

namespace fuzz {

inline constexpr const char* kUser = "7001";
inline constexpr const char* kVersion = "1.0";

class Sandbox {
public:
    /// Makes the folders in memory where the system has such a place.
    Sandbox();
    ~Sandbox();
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;

    [[nodiscard]] std::string account() const { return root_ + "/user/account"; }
    [[nodiscard]] std::string backup() const { return root_ + "/user/backup"; }
    [[nodiscard]] std::string packageMessages() const { return backup() + "/qelmsg_0/messages_0/" + kUser + "/"; }
    [[nodiscard]] std::string packageFiles() const { return backup() + "/qelmsg_0/qelimfiles_0/" + kUser + "/"; }
    [[nodiscard]] std::string tree() const { return backup() + "/qelbackup/" + kUser + "/"; }

    /// Gives the transfer object its folders, user and version.
    void enter(dbTrans& transfer) const;

    /// Writes a file, missing folders included.
    static void write(const std::string& path, const std::string& bytes);

    /// Makes an empty database of the account, by its path below the account's folder.
    void makeDatabase(const std::string& name) const;

    /// Checks that nothing beside the user's folders changed, and that no file below `folder` holds what stands there.
    void requireUntouched(const std::string& folder) const;

    /// Empties a folder of the user.
    static void empty(const std::string& folder);

private:
    std::string root_;
};

}  // namespace fuzz
