// What a listener hears.
#include <climits>

#include "tests/transfer/export/account_fixture.h"

namespace {

using test::AccountTest;

class Progress : public AccountTest {};

TEST_F(Progress, SendsStagePercentAndText) {
    transfer.progress(2, 4, 1);
    EXPECT_EQ(std::vector<std::string>{"2 25 1/4"}, listener.heard);
}

TEST_F(Progress, TruncatesThePercentage) {
    transfer.progress(2, 3, 2);
    transfer.progress(2, 1000, 999);
    EXPECT_EQ((std::vector<std::string>{"2 66 2/3", "2 99 999/1000"}), listener.heard);
}

TEST_F(Progress, TruncatesTowardZeroBelowZeroToo) {
    transfer.progress(1, 3, -2);
    EXPECT_EQ(std::vector<std::string>{"1 -66 -2/3"}, listener.heard);
}

TEST_F(Progress, OfATotalOfZeroIsTheNearestNumberThatThereIs) {
    transfer.progress(2, 0, 0);
    transfer.progress(2, 0, 5);
    transfer.progress(2, 0, -5);
    EXPECT_EQ((std::vector<std::string>{"2 0 0/0", "2 2147483647 5/0", "2 -2147483648 -5/0"}), listener.heard);
}

TEST_F(Progress, OfAPercentageBeyondIntIsTheLargestInt) {
    transfer.progress(2, 1, INT_MAX);
    transfer.progress(2, 1, INT_MIN);
    EXPECT_EQ((std::vector<std::string>{"2 2147483647 2147483647/1", "2 -2147483648 -2147483648/1"}), listener.heard);
}

TEST_F(Progress, PassesTheContextBackUnchanged) {
    transfer.progressContext = LLONG_MIN;
    transfer.progress(1, 1, 1);
    EXPECT_EQ(std::vector<long long>{LLONG_MIN}, listener.contexts);
}

TEST_F(Progress, WithoutAListenerIsHeardByNobody) {
    transfer.progressListener = nullptr;
    transfer.progress(1, 2, 1);
    EXPECT_EQ(1, transfer.exportFile());
    EXPECT_TRUE(listener.heard.empty());
}

int receiverCalls = 0;
void countCall(int /*a*/, int /*b*/, int /*c*/) {
    ++receiverCalls;
}

TEST_F(Progress, RegisteredReceiversAreKeptAndNotCalled) {
    transfer.regExProgress(countCall);
    EXPECT_EQ(&countCall, transfer.exProgress);
    EXPECT_EQ(nullptr, transfer.imProgress);
    transfer.regImProgress(countCall);
    EXPECT_EQ(&countCall, transfer.imProgress);
    receiverCalls = 0;
    transfer.progress(1, 1, 1);
    fillDay("2019:3:7", 1);
    EXPECT_EQ(0U, transfer.wtMsgToFile());
    EXPECT_EQ(0, receiverCalls);
}

}  // namespace
