#include "app/base/text_table.h"

#include <gtest/gtest.h>

#include <sstream>

namespace app {
namespace {

TEST(TextTable, PadsColumnsToTheirWidestCell) {
    TextTable table({Align::left, Align::right, Align::left});
    table.add({"a", "1", "x"});
    table.add({"longer", "1,000", "y"});
    std::ostringstream out;
    table.print(out);
    EXPECT_EQ("  a           1  x\n  longer  1,000  y\n", out.str());
}

TEST(TextTable, EndsNoLineInBlanks) {
    TextTable table({Align::left, Align::left});
    table.add({"a", ""});
    table.add({"b", "long"});
    std::ostringstream out;
    table.print(out);
    EXPECT_EQ("  a\n  b  long\n", out.str());
}

}  // namespace
}  // namespace app
