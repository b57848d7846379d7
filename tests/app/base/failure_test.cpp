#include "app/base/failure.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "transfer/error_codes.h"

namespace app {
namespace {

TEST(FailureWords, GiveEveryCodeAMeaningOfItsOwn) {
    std::set<std::string> meanings;
    for (unsigned int code = chattransfer::kPackageExists; code <= chattransfer::kWrongVersion; ++code)
        meanings.insert(chattransfer::meaningOf(code));
    EXPECT_EQ(7U, meanings.size());
    EXPECT_EQ(0U, meanings.count(chattransfer::meaningOf(0xff000025)));
}

TEST(FailureWords, ShowCodesInHexadecimal) {
    EXPECT_EQ("0xff00001f", hexCode(chattransfer::kDatabaseFailed));
    EXPECT_EQ("0x00000000", hexCode(0));
}

TEST(FailureWords, SayWhatWhereWhyAndWhatToDo) {
    std::ostringstream out;
    printFailure(out, {chattransfer::kMissing, "There is no package", "/a/\x1b[1m", "gone", "look elsewhere"});
    EXPECT_EQ(
        "chat-transfer: There is no package.\n"
        "  Path:   /a/\\x1b[1m\n"
        "  Reason: gone\n"
        "  Code:   0xff000022 (a package, or a file of it, is missing)\n"
        "  To do:  look elsewhere\n",
        out.str());
}

TEST(FailureWords, LeaveOutWhatIsNotKnown) {
    std::ostringstream out;
    printFailure(out, {0, "No key was given"});
    EXPECT_EQ("chat-transfer: No key was given.\n", out.str());
}

}  // namespace
}  // namespace app
