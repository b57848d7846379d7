// Reading the text of message files: packages and trees share their shape. No JSON tree is built; keys come from
// package_format.h, and what is accepted is what the JSON library accepts (host/json/json_reader.h).
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "transfer/format/package_format.h"
#include "transfer/records.h"

namespace chattransfer {

/// One day object of a message file.
struct MessageDay {
    CalendarDay date;  ///< numbers truncated toward zero; 0 for what is missing
    std::vector<imsdk::st_dbMessageBean> messages;
    /// The lists as the day object has them, joined by ";"; those of the messages stand in the messages.
    std::string limitRange;
    std::string relatedUsers;
};

/// A message file. Each record has its defaults (status 4, extraValue2 -1, all else 0 or empty), what its object has,
/// and the day it stands under. Elements that are no objects are no records and are passed over.
struct MessageFileContent {
    bool isJson = false;    ///< the text is valid JSON
    bool isObject = false;  ///< and an object; else nothing below is set
    std::optional<std::string> version;
    bool hasDays = false;  ///< its "msgs" is an array
    std::vector<MessageDay> days;
};

/// Which keys of a message object are read.
enum class ReadKeys {
    ofImport,  ///< those that an import takes over (KeyUse::always)
    all,       ///< whatever the format has
};

/// Reads a message file. The text is used up.
[[nodiscard]] MessageFileContent readMessageFileText(std::string& text, ReadKeys keys = ReadKeys::ofImport);

}  // namespace chattransfer
