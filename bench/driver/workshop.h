// The folders, programs and settings that all stages share.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/driver/race.h"

namespace bench {

/// The programs that are measured. Empty paths: not there, its rows are left out.
struct Programs {
    std::string folder;  ///< of our own programs
    std::string shell;   ///< the sqlite3 program
    std::string python;
    std::string peerScript;
};

struct Settings {
    int rounds = 5;
    /// Runs of a few tenths of a second are disturbed most, and more of them cost little.
    int timesForSmall = 3;
    int roundsFor(int messages) const { return messages <= 100000 ? timesForSmall * rounds : rounds; }
    std::vector<int> sizes;  ///< messages; the table speaks of the last two
    std::vector<int> oneDaySizes;
    int manyConversations = 0;
    int treeFiles = 0;
    static constexpr int kTreeMessagesPerFile = 10;
    int treeMessages() const { return treeFiles * kTreeMessagesPerFile; }
    int attachments = 0;
    int fileBytes = 20480;
};

class Workshop {
public:
    Workshop(std::string folder, Programs programs, Settings settings);

    const Programs& programs() const { return programs_; }
    const Settings& settings() const { return settings_; }
    Results& results() { return results_; }

    /// The path of a name in the work folder.
    std::string at(const std::string& name) const { return folder_ + "/" + name; }

    /// Removes what is at the path, and makes an empty folder there.
    std::string freshFolder(const std::string& name) const;
    /// The same with the empty databases of a fresh account.
    std::string freshAccount(const std::string& name) const;

    /// Makes an account by bench-data, whose arguments are given, unless it is there already.
    std::string account(const std::string& name, const std::vector<std::string>& arguments) const;

    /// One of our own programs with arguments.
    Command own(const std::string& program, std::vector<std::string> arguments) const;

    void run(const Command& command) const { runProcess(command); }

    /// Removes everything in the work folder: stages do not share data.
    void clear() const;

private:
    std::string folder_;
    Programs programs_;
    Settings settings_;
    Results results_;
};

/// The arguments of an account of `messages` messages in conversations of a thousand.
std::vector<std::string> sizedAccount(int messages);

}  // namespace bench
