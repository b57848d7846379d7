// Random JSON texts, good and broken, the same for the same seed; and all short ones.
#pragma once

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

namespace test {

class JsonGenerator {
public:
    enum class Comments { none, between };

    explicit JsonGenerator(unsigned seed, Comments comments = Comments::none) : random_(seed), comments_(comments) {}

    /// A JSON value of random shape, nested up to `depth` levels, with blanks, escapes, odd numbers and odd names.
    std::string value(int depth);

    /// A string literal with its quotes; now and then one that is not valid.
    std::string string();

    /// A number literal; now and then one that is not valid.
    std::string number();

    /// A number literal of many digits, a point and an exponent; now and then one of them is missing.
    std::string longNumber();

    /// `count` digits, the first of which is no zero.
    std::string digits(int count);

    /// Arrays and objects `depth` levels deep, with `inside` in the innermost, an array.
    std::string nested(int depth, const std::string& inside);

    /// `text` with one to three random bytes changed, removed or inserted.
    std::string broken(std::string text);

    /// A number from 0 to `limit` - 1.
    int upTo(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }

    std::mt19937& random() { return random_; }

private:
    std::string blanks();
    std::string object(int depth);
    std::string array(int depth);

    std::mt19937 random_;
    Comments comments_;
};

/// Calls visit(text) for every text of up to `longest` of the `letters`.
template <class Visit>
void forEachText(std::string_view letters, std::size_t longest, Visit visit, const std::string& begin = "") {
    visit(begin);
    if (begin.size() == longest || testing::Test::HasFatalFailure()) return;
    for (const char letter : letters)
        forEachText(letters, longest, visit, begin + letter);
}

}  // namespace test
