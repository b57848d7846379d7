// Names and short texts: who is who, and when a message was sent and what it says, in a line.
#pragma once

#include <string>

#include "app/view/history.h"

namespace app::view {

/// The contact's name, or the id where there is none, as shortLine() gives it: a name stands beside each message.
[[nodiscard]] std::string nameOf(const History& history, long long id);

/// True for a message of the user whose history it is.
[[nodiscard]] bool isOwn(const History& history, const Message& message);

/// "You", or the sender's name.
[[nodiscard]] std::string senderOf(const History& history, const Message& message);

/// "2024-06-30 14:05"; the day alone where the time is unknown.
[[nodiscard]] std::string whenText(const Message& message);

/// What a message says: its text, or for one that carries files what they are, such as "File: plan.pdf". As shownText()
/// gives it.
[[nodiscard]] std::string textOf(const History& history, const Message& message);

/// "Text", "Voice", "Picture", "File", "Pictures", "Video", or "Type 7".
[[nodiscard]] std::string typeText(int type);

}  // namespace app::view
