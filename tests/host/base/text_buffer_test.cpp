#include "host/base/text_buffer.h"

#include <gtest/gtest.h>

namespace {

TEST(TextBuffer, HoldsWhatWasAppended) {
    tools::TextBuffer buffer;
    std::string expected;
    for (int i = 0; i < 1000; ++i) {
        const std::string piece(static_cast<std::size_t>(i % 37), static_cast<char>('a' + i % 26));
        buffer += piece;
        buffer += ';';
        expected += piece + ';';
        ASSERT_EQ(expected, buffer.text());
    }
}

TEST(TextBuffer, AnEmptyOneGivesAnEmptyText) {
    tools::TextBuffer buffer;
    EXPECT_EQ("", buffer.text());
    buffer += std::string_view();
    EXPECT_EQ("", buffer.text());
}

TEST(TextBuffer, WhatWasReservedCountsUpToItsEnd) {
    tools::TextBuffer buffer;
    buffer += "number ";
    char* end = buffer.reserve(10);
    *end++ = '4';
    *end++ = '2';
    buffer.extendTo(end);
    EXPECT_EQ("number 42", buffer.text());
}

TEST(TextBuffer, IsEmptyAfterAClear) {
    tools::TextBuffer buffer;
    buffer += "before";
    buffer.clear();
    buffer += "x";
    EXPECT_EQ("x", buffer.text());
}

}  // namespace
