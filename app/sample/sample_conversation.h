// The messages of one conversation of a sample account.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/sample/random.h"
#include "app/sample/sample_plan.h"
#include "transfer/records.h"

namespace app {

/// Who writes in a conversation.
struct SampleConversation {
    long long number = 0;  ///< counted from 0
    long long id = 0;
    long long ownId = 0;                 ///< the account's user
    std::vector<long long> others = {};  ///< one in a private conversation, several in a group
    [[nodiscard]] bool group() const { return others.size() > 1; }
};

/// Writes the files of an attachment message and gives its body; `day` is "2024-06-15". Throws Failure.
using AttachmentMaker =
    std::function<std::string(int msgType, long long messageId, const std::string& day, Random& random)>;

/// Everything that the messages of one sample are made from.
class SampleWriter {
public:
    SampleWriter(SamplePlan plan, AttachmentTurns turns, AttachmentMaker makeAttachment);

    [[nodiscard]] SampleConversation conversation(long long number, long long id, long long ownId) const;

    /// The messages in the order of time; their attachments are written. Throws Failure.
    [[nodiscard]] std::vector<imsdk::st_dbMessageBean> messages(const SampleConversation& conversation,
                                                                long long count);

    /// The conversation's line in the list of recent contacts. `last` is null for a conversation without messages.
    [[nodiscard]] imsdk::st_dbReContactBean contact(const SampleConversation& conversation,
                                                    const imsdk::st_dbMessageBean* last) const;

private:
    void fill(imsdk::st_dbMessageBean& message, const SampleConversation& conversation, Random& random);
    void attach(imsdk::st_dbMessageBean& message, int msgType, Random& random);
    [[nodiscard]] Random randomOf(long long conversation, unsigned long long stream) const;

    SamplePlan plan_;
    AttachmentTurns turns_;
    AttachmentMaker makeAttachment_;
};

}  // namespace app
