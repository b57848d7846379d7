// One message on a page.
#pragma once

#include <cstddef>

#include "app/view/history.h"
#include "app/view/markup.h"
#include "app/view/media_folder.h"

namespace app::view {

/// Adds the message as an element of the page's list. `number` counts the conversation's messages from 1 and names the
/// element: "m12". The files that it names are copied on the way.
void addMessage(Markup& page, const History& history, const Message& message, std::size_t number, MediaFolder& media);

}  // namespace app::view
