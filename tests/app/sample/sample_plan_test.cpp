#include "app/sample/sample_plan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <set>

#include "transfer/format/attachment_body.h"

namespace app {
namespace {

SamplePlan planOf(long long conversations, long long messages) {
    SamplePlan plan;
    plan.conversations = conversations;
    plan.messages = messages;
    return plan;
}

// How many attachment files a sample of so many messages gets.
long long filesOf(long long messages) {
    AttachmentTurns turns(messages);
    long long files = 0;
    for (long long i = 0; i < messages; ++i) {
        const int type = turns.next();
        if (type != 0) files += type == chattransfer::kImageMessage ? 2 : 1;
    }
    return files;
}

TEST(SamplePlan, SharesAllMessagesOut) {
    for (const auto& plan : {planOf(1, 1), planOf(20, 20000), planOf(7, 6), planOf(1000, 1000), planOf(200, 1000000)}) {
        const std::vector<long long> sizes = conversationSizes(plan);
        EXPECT_EQ(static_cast<std::size_t>(plan.conversations), sizes.size());
        EXPECT_EQ(plan.messages, std::accumulate(sizes.begin(), sizes.end(), 0LL));
        EXPECT_GE(*std::min_element(sizes.begin(), sizes.end()), plan.messages >= plan.conversations ? 1 : 0);
    }
}

TEST(SamplePlan, MakesSomeConversationsBusierThanOthers) {
    const std::vector<long long> sizes = conversationSizes(planOf(20, 20000));
    EXPECT_GT(sizes.front(), 4 * sizes.back());
}

TEST(SamplePlan, GivesEveryConversationAnIdOfItsOwn) {
    const std::vector<long long> ids = conversationIds(planOf(20000, 1));
    EXPECT_EQ(20000U, std::set<long long>(ids.begin(), ids.end()).size());
    EXPECT_GE(*std::min_element(ids.begin(), ids.end()), 1000000000000000);
    EXPECT_LT(*std::max_element(ids.begin(), ids.end()), 9007199254740992);
}

TEST(SamplePlan, OrdersMessagesByDifferentTimes) {
    SamplePlan plan;
    plan.days = 1;
    const std::vector<long long> times = messageTimes(plan, 0, 20000);
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
    EXPECT_EQ(times.end(), std::adjacent_find(times.begin(), times.end()));
}

TEST(SamplePlan, AttachesFilesToAboutOneMessageInAHundred) {
    EXPECT_EQ(199, filesOf(20000));
}

TEST(SamplePlan, NeverMakesMoreThanTwoThousandFiles) {
    EXPECT_GT(filesOf(1000000), 1900);
    EXPECT_LE(filesOf(1000000), 2000);
    EXPECT_LE(filesOf(3000017), 2000);
}

TEST(SamplePlan, GivesASmallSampleOneOfEachKind) {
    AttachmentTurns turns(30);
    std::map<int, int> types;
    for (int i = 0; i < 30; ++i)
        ++types[turns.next()];
    EXPECT_EQ((std::map<int, int>{{0, 27}, {3, 1}, {5, 1}, {6, 1}}), types);
}

}  // namespace
}  // namespace app
