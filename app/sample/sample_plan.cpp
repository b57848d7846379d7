#include "app/sample/sample_plan.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "app/sample/random.h"
#include "transfer/format/attachment_body.h"

namespace app {
namespace {

// The day after the sample's last one, so that a sample is the same whenever it is made: 2024-07-01.
constexpr long long kEndDay = 19905;

constexpr long long kMillisecondsPerDay = 86400000;
constexpr long long kWakingHour = 7;
constexpr long long kWakingHours = 16;
constexpr long long kMillisecondsPerHour = 3600000;

constexpr long long kMostFiles = 2000;
constexpr long long kUsualStride = 134;

// Independent streams of random numbers from one seed.
enum class Stream : unsigned long long { ids = 1, times = 2 };

Random randomOf(const SamplePlan& plan, Stream stream, long long number) {
    Random seed(plan.seed * 3 + static_cast<unsigned long long>(stream));
    return Random(seed.next() + static_cast<unsigned long long>(number) * 0x2545F4914F6CDD1DU);
}

long long randomTime(Random& random, long long days) {
    const auto below = [&random](long long bound) {
        return static_cast<long long>(random.below(static_cast<unsigned long long>(bound)));
    };
    const long long day = kEndDay - 1 - below(days);
    // The sum of two makes the afternoon busier than morning and night.
    const long long waking =
        (below(kWakingHours * kMillisecondsPerHour) + below(kWakingHours * kMillisecondsPerHour)) / 2;
    return day * kMillisecondsPerDay + kWakingHour * kMillisecondsPerHour + waking;
}

}  // namespace

std::vector<long long> conversationSizes(const SamplePlan& plan) {
    constexpr long long kScale = 1000000;
    const auto weight = [](std::size_t i) { return kScale / (static_cast<long long>(i) + 3); };
    std::vector<long long> sizes(static_cast<std::size_t>(plan.conversations));
    long long weights = 0;
    for (std::size_t i = 0; i < sizes.size(); ++i)
        weights += weight(i);
    // One for each first, then shares of what is left, and the crumbs of rounding to the first.
    long long left = plan.messages;
    for (std::size_t i = 0; i < sizes.size() && left > 0; ++i, --left)
        sizes[i] = 1;
    const long long shared = left;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        const auto share = static_cast<long long>(static_cast<double>(shared) * static_cast<double>(weight(i)) /
                                                  static_cast<double>(weights));
        const long long taken = std::min(share, left);
        sizes[i] += taken;
        left -= taken;
    }
    sizes.front() += left;
    return sizes;
}

std::vector<long long> conversationIds(const SamplePlan& plan) {
    constexpr long long kSmallest = 1000000000000000;
    constexpr unsigned long long kRange = 8000000000000000;
    Random random = randomOf(plan, Stream::ids, 0);
    std::unordered_set<long long> taken;
    std::vector<long long> ids;
    while (static_cast<long long>(ids.size()) < plan.conversations) {
        const long long id = kSmallest + static_cast<long long>(random.below(kRange));
        if (taken.insert(id).second) ids.push_back(id);
    }
    return ids;
}

std::vector<long long> messageTimes(const SamplePlan& plan, long long conversation, long long count) {
    Random random = randomOf(plan, Stream::times, conversation);
    std::vector<long long> times(static_cast<std::size_t>(count));
    for (long long& time : times)
        time = randomTime(random, plan.days);
    std::sort(times.begin(), times.end());
    for (std::size_t i = 1; i < times.size(); ++i)
        times[i] = std::max(times[i], times[i - 1] + 1);
    return times;
}

AttachmentKinds packageAttachments() {
    return {{chattransfer::kVoiceMessage, chattransfer::kImageMessage, chattransfer::kFileMessage}, 4};
}

AttachmentTurns::AttachmentTurns(long long messages, AttachmentKinds kinds) : kinds_(std::move(kinds)) {
    const auto types = static_cast<long long>(kinds_.types.size());
    const long long forLimit = (messages * kinds_.files + kMostFiles * types - 1) / (kMostFiles * types);
    const long long forSmallSample = std::max(1LL, messages / types);
    stride_ = std::max(std::min(kUsualStride, forSmallSample), forLimit);
}

AttachmentTurns::AttachmentTurns(AttachmentKinds kinds, long long stride) : kinds_(std::move(kinds)), stride_(stride) {}

int AttachmentTurns::next() {
    if (++position_ % stride_ != 0) return 0;
    return kinds_.types[turn_++ % kinds_.types.size()];
}

}  // namespace app
