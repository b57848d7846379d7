// Random JSON texts, good and broken, the same for the same seed.
#pragma once

#include <random>
#include <string>

namespace test {

class JsonGenerator {
public:
    explicit JsonGenerator(unsigned seed) : random_(seed) {}

    /// A JSON value of random shape, nested up to `depth` levels, with blanks, escapes, odd numbers and odd names.
    std::string value(int depth);

    /// A string literal with its quotes; now and then one that is not valid.
    std::string string();

    /// A number literal; now and then one that is not valid.
    std::string number();

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
};

}  // namespace test
