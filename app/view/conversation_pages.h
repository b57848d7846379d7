// The pages of one conversation: its messages day by day, and the list of its days.
#pragma once

#include <string>
#include <vector>

#include "app/view/history.h"
#include "app/view/media_folder.h"
#include "app/view/page_folder.h"
#include "app/view/pager.h"

namespace app::view {

/// The folder of a conversation's pages, ending in "/": "conversations/5/".
[[nodiscard]] std::string folderOfConversation(long long id);

/// The name of one of its pages in that folder; pages count from 1.
[[nodiscard]] std::string pageName(std::size_t page);

/// Writes all pages of the conversation, one after another: only one is in memory. The messages are sorted, and `pages`
/// are theirs. Throws Failure.
void writeConversation(PageFolder& folder, const History& history, const Conversation& conversation,
                       const std::vector<PageRange>& pages, MediaFolder& media);

}  // namespace app::view
