// Sample trees, as the tests of inspect and verify look at them.
#pragma once

#include <filesystem>

#include "tests/app/fixture.h"

namespace test {

class SampleTreeTest : public CommandTest {
protected:
    /// A plain tree of 300 messages in 4 conversations, 12 notes and 2 rooms.
    void makePlainTree(const std::string& folder) const {
        ASSERT_EXIT_CODE(0, chatTransfer({"sample-tree", "--to", at(folder), "--user", kUser, "--conversations", "4",
                                          "--messages", "300", "--days", "5"}));
    }

    /// That tree, encrypted, in `folder`; the key is in the file "key".
    void makeEncryptedTree(const std::string& folder) {
        makePlainTree("plain-" + folder);
        std::filesystem::permissions(dir_.write("key", "secret"), std::filesystem::perms(0600));
        ASSERT_EXIT_CODE(0, chatTransfer({"encrypt-tree", "--from", at("plain-" + folder), "--to", at(folder), "--user",
                                          kUser, "--key-file", at("key")}));
    }

    Arguments keyFile() const { return {"--key-file", at("key")}; }
};

}  // namespace test
