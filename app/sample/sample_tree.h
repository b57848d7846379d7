// A tree that looks alive: what lies in a user's folder before it is encrypted.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "app/sample/sample_conversation.h"
#include "app/sample/sample_plan.h"
#include "app/sample/sample_tree_attachment.h"

namespace app {

struct TreeSampleSettings {
    SamplePlan plan;
    long long ownId = 0;
    long long messagesPerFile = 200;
    std::string version;
};

struct TreeSampleCounts {
    long long messageFiles = 0;
    long long messages = 0;
    std::map<int, long long> messagesByType;
    long long contacts = 0;
    long long notes = 0;
    long long rooms = 0;
};

/// How many messages each conversation of a tree gets: an import cuts conversations of more than 5,000 messages back,
/// so that none gets more than 4,000 as long as others have room.
[[nodiscard]] std::vector<long long> treeConversationSizes(const SamplePlan& plan);

/// Writes a conversation's messages into numbered files of a new folder, `perFile` in each. Returns the number of
/// files. Throws Failure.
[[nodiscard]] long long writeMessageFiles(const std::string& folder, const std::string& version, long long perFile,
                                          const std::vector<imsdk::st_dbMessageBean>& messages);

class TreeSample {
public:
    /// `folder` is there, empty, and ends in "/".
    TreeSample(TreeSampleSettings settings, std::string folder);

    /// Calls progress(done) after each conversation. Throws Failure.
    void write(const std::function<void(std::size_t)>& progress);

    [[nodiscard]] const TreeSampleCounts& counts() const { return counts_; }

private:
    void writeConversation(const SampleConversation& conversation, long long size);
    void writeMessages(const SampleConversation& conversation, const std::vector<imsdk::st_dbMessageBean>& messages);
    void writeContacts();
    void writeNotes(const std::vector<long long>& ids);
    void writeRooms(const std::vector<long long>& ids);

    TreeSampleSettings settings_;
    std::string folder_;
    TreeAttachmentMaker attachments_;
    SampleWriter writer_;
    std::vector<imsdk::st_dbReContactBean> contacts_;
    std::vector<SampleConversation> groups_;
    TreeSampleCounts counts_;
};

}  // namespace app
