// The text of message files, written without a JSON tree: a tree of a million messages is most of what an export would
// cost. The keys and their order come from package_format.h as for the tree (dbTrans::makeJson); tests hold both
// against each other, byte by byte.
#pragma once

#include <string>
#include <string_view>

#include "host/base/text_buffer.h"
#include "transfer/format/package_format.h"
#include "transfer/records.h"

namespace chattransfer {

/// Appends the message object, as json_serialize_to_string() writes dbTrans::makeJson(2, &message).
void appendMessage(tools::TextBuffer& out, const imsdk::st_dbMessageBean& message);

/// Builds the text of one message file in a buffer that is used again for the next.
class MessageFileText {
public:
    explicit MessageFileText(std::string version) : version_(std::move(version)) {}

    /// Starts a file without days.
    void begin();

    /// Appends a day object with the messages of [first, last).
    void addDay(const CalendarDay& day, const imsdk::st_dbMessageBean* first, const imsdk::st_dbMessageBean* last);

    /// Completes the file; the text is valid until the next begin().
    [[nodiscard]] std::string_view finish();

private:
    std::string version_;
    tools::TextBuffer text_;
    bool hasDay_ = false;
};

}  // namespace chattransfer
