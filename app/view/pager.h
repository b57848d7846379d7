// Long lists on several pages: where the pages begin, and the links between them.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "app/view/history.h"
#include "app/view/markup.h"

namespace app::view {

/// What a page holds at most: enough to read on, little enough to open at once.
inline constexpr std::size_t kMessagesOnAPage = 500;
inline constexpr std::size_t kTextOnAPage = 1000000;  ///< bytes, unless one message alone is longer

/// Messages [first, end) of a conversation.
struct PageRange {
    std::size_t first;
    std::size_t end;
};

/// The pages of a conversation, in order; at least one message on each.
[[nodiscard]] std::vector<PageRange> pagesOf(const std::vector<Message>& messages);

/// Links from page `page` of `pages` (both count from 1) to the first, previous, next and last one; nothing for a
/// single page. nameOf(number) is the name of a page's file.
[[nodiscard]] Markup pagerOf(std::size_t page, std::size_t pages,
                             const std::function<std::string(std::size_t)>& nameOf);

}  // namespace app::view
