// Elements in one text, for comparison.
#pragma once

#include <string>

namespace test {

/// What describe() makes of each element, with `separator` between them.
template <class Range, class Describe>
std::string listed(const Range& range, const std::string& separator, Describe describe) {
    std::string text;
    bool first = true;
    for (const auto& element : range) {
        text.append(first ? "" : separator).append(describe(element));
        first = false;
    }
    return text;
}

/// The same of texts as they are.
template <class Range>
std::string listed(const Range& texts, const std::string& separator = " ") {
    return listed(texts, separator, [](const std::string& text) { return text; });
}

/// The ids of messages.
template <class Messages>
std::string idsOf(const Messages& messages) {
    return listed(messages, " ", [](const auto& message) { return std::to_string(message.msgID); });
}

}  // namespace test
