// What all pages have around their content.
#pragma once

#include <string>

#include "app/view/content_policy.h"
#include "app/view/markup.h"

namespace app::view {

/// Where a page lies: the way back to the folder that holds index.html.
enum class PagePlace {
    top,           ///< beside index.html
    conversation,  ///< in conversations/<id>/
};

/// The whole page. `title` is plain text, as shownLine() gives it; `content` goes into the main landmark.
[[nodiscard]] std::string wholePage(PageKind kind, PagePlace place, const std::string& title, const Markup& content);

}  // namespace app::view
