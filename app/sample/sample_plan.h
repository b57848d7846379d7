// What a sample account is to hold: sizes, ids and days. Everything follows from the seed.
#pragma once

#include <string>
#include <vector>

namespace app {

struct SamplePlan {
    long long conversations = 20;
    long long messages = 20000;
    long long days = 60;
    unsigned long long seed = 1;
};

/// How many messages each conversation gets: a few get many, many get few, and all get one as long as there are enough.
[[nodiscard]] std::vector<long long> conversationSizes(const SamplePlan& plan);

/// The ids of the conversations: different numbers of 16 digits below 2^53, beyond which a package rounds ids.
[[nodiscard]] std::vector<long long> conversationIds(const SamplePlan& plan);

/// `count` different times in milliseconds since 1970, ascending, in waking hours of the plan's days.
[[nodiscard]] std::vector<long long> messageTimes(const SamplePlan& plan, long long conversation, long long count);

/// What kinds of attachment messages a sample has: they take turns.
struct AttachmentKinds {
    std::vector<int> types;
    long long files;  ///< of one message of each type, all together
};

/// Voice, image and file messages; an image comes with its thumbnail.
[[nodiscard]] AttachmentKinds packageAttachments();

/// Says which messages carry attachments: about one in a hundred, and never more than 2,000 files in all.
class AttachmentTurns {
public:
    explicit AttachmentTurns(long long messages, AttachmentKinds kinds = packageAttachments());

    /// Every message whose number `stride` divides, however many files that makes.
    AttachmentTurns(AttachmentKinds kinds, long long stride);

    /// The type of the next message: a type that carries attachments, or 0.
    [[nodiscard]] int next();

private:
    AttachmentKinds kinds_;
    long long stride_;
    long long position_ = 0;
    std::size_t turn_ = 0;
};

}  // namespace app
