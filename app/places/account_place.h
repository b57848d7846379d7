// Where an account's databases and attachments lie.
#pragma once

#include <string>
#include <vector>

namespace app {

/// The databases that hold messages.
enum class Database { main, back };

/// The places of one account. Paths are absolute: commands change their working directory.
class Account {
public:
    explicit Account(const std::string& folder);

    [[nodiscard]] const std::string& root() const { return root_; }
    [[nodiscard]] std::string database(Database which) const;
    [[nodiscard]] std::string pluginDatabase() const;
    [[nodiscard]] std::vector<std::string> databases() const;

private:
    std::string root_;
};

/// Whether the database may be made. A link that leads nowhere is the user's (the disk that it leads to may be away),
/// and where nobody can look there may be a database already.
[[nodiscard]] bool isFree(const std::string& database);

}  // namespace app
