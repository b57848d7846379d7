// The search over all messages: search.html with our script, and the messages' texts in parts that the script loads one
// after another. A page on the disk may not read files, but it may add a script element: so each part is a script that
// hands its messages over.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/view/history.h"
#include "app/view/page_folder.h"
#include "app/view/pager.h"

namespace app::view {

class SearchIndex {
public:
    explicit SearchIndex(PageFolder& folder) : folder_(folder) {}

    /// Adds the messages of a conversation, the newest first. They are sorted, and `pages` are theirs. Throws Failure.
    void add(const History& history, const Conversation& conversation, const std::vector<PageRange>& pages);

    /// Writes the last part and the page. Throws Failure.
    void finish();

private:
    void addMessage(const History& history, const Message& message, std::size_t page, std::size_t number);
    void beginConversation(const History& history, const Conversation& conversation);
    void writePart();
    void writePage();

    PageFolder& folder_;
    std::size_t parts_ = 0;
    // Of the part that is being filled.
    std::string conversations_;
    std::string messages_;
    std::size_t conversationCount_ = 0;
    std::size_t messageCount_ = 0;
};

}  // namespace app::view
