#include "app/account/secret_text.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace app {
namespace {

TEST(SecretText, WipesTheWholeMemoryOfAText) {
    std::string key(100, 'k');
    key.resize(10);
    const char* bytes = key.data();
    const std::size_t size = key.capacity();
    wipe(key);
    EXPECT_TRUE(key.empty());
    ASSERT_EQ(bytes, key.data());
    key.resize(size);  // within the capacity: the same memory, of which the text now owns every byte
    EXPECT_EQ(size, static_cast<std::size_t>(std::count(key.begin(), key.end(), '\0')));
}

TEST(SecretText, LeavesNothingInTheTextThatItTookOver) {
    for (const std::size_t length : {std::size_t{5}, std::size_t{100}}) {
        std::string source(length, 'k');
        const SecretText key(std::move(source));
        EXPECT_EQ(std::string(length, 'k'), key.text());
        source.resize(source.capacity());  // NOLINT(bugprone-use-after-move): what is left of it is the question
        EXPECT_EQ(0, std::count(source.begin(), source.end(), 'k'));
    }
}

TEST(SecretText, MovesWithoutACopy) {
    SecretText first{std::string("short")};
    const SecretText second(std::move(first));
    EXPECT_EQ("short", second.text());
    EXPECT_TRUE(first.empty());  // NOLINT(bugprone-use-after-move): that it is empty is the point
}

}  // namespace
}  // namespace app
