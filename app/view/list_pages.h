// The list of conversations: index.html, and further pages where there are many.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/view/history.h"
#include "app/view/markup.h"
#include "app/view/page_folder.h"

namespace app::view {

/// Pinned conversations first, then the one with the latest message.
void sortConversations(History& history);

class ListPages {
public:
    /// Adds a conversation behind those before; its messages are sorted and stand on `pages` pages.
    void add(const History& history, const Conversation& conversation, std::size_t pages);

    /// Writes the pages, with the contacts that have no messages at the end of the last one. Throws Failure.
    void write(PageFolder& folder, const History& history) const;

private:
    std::vector<Markup> entries_;
};

}  // namespace app::view
