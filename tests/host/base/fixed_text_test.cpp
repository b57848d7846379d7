#include "host/base/fixed_text.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {

using tools::FixedText;

template <std::size_t Size>
std::string whole(const FixedText<Size>& buffer) {
    return std::string(buffer.text(), Size);
}

TEST(FixedTextTest, FormatsAsPrintfDoes) {
    const FixedText<64> text("%s_%lld_%d", "im_msg", LLONG_MIN, -1);
    EXPECT_TRUE(text.fits());
    EXPECT_STREQ("im_msg_-9223372036854775808_-1", text.text());
}

TEST(FixedTextTest, AnExactFitLeavesRoomForTheNul) {
    const FixedText<5> text("%s", "1234");
    EXPECT_TRUE(text.fits());
    EXPECT_EQ(std::string("1234\0", 5), whole(text));
}

TEST(FixedTextTest, OneTooLongIsEmptyAsAWhole) {
    const FixedText<5> text("%s", "12345");
    EXPECT_FALSE(text.fits());
    EXPECT_EQ(std::string(5, '\0'), whole(text));
}

TEST(FixedTextTest, MuchTooLongIsEmptyAsAWhole) {
    const FixedText<256> text("im_msg_%s", std::string(1000000, 'x').c_str());
    EXPECT_FALSE(text.fits());
    EXPECT_EQ(std::string(256, '\0'), whole(text));
}

TEST(FixedTextTest, AnEmptyTextFits) {
    const FixedText<1> text("%s", "");
    EXPECT_TRUE(text.fits());
    EXPECT_STREQ("", text.text());
}

TEST(FixedTextTest, TheRestOfTheBufferIsZero) {
    const FixedText<16> text("%s", "abc");
    EXPECT_EQ("abc" + std::string(13, '\0'), whole(text));
}

}  // namespace
