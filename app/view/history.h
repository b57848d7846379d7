// What the pages show, wherever it came from. Texts are as the package or tree has them: hostile.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "app/base/calendar.h"

namespace app::view {

struct Message {
    long long time = 0;  ///< milliseconds since 1970; 0 when unknown
    long long id = 0;
    long long sender = 0;
    CivilDay day{0, 0, 0};  ///< as the data has it, which may be no day of the calendar
    int type = 0;
    std::string body;
};

struct Conversation {
    long long id = 0;
    std::vector<Message> messages;  ///< never empty
};

/// A recent contact: it names a conversation or a person.
struct Contact {
    std::string name;
    std::string lastText;
    bool pinned = false;
};

enum class MediaKind { picture, voice, video, file };

/// A file that a message names.
struct NamedFile {
    MediaKind kind;
    bool isPreview;         ///< a smaller picture of the file before it, or the still of the video behind it
    std::string source;     ///< path below the attachments of the package or tree
    std::string shownName;  ///< what people know it as
};

struct History {
    std::string user;  ///< whose history it is: messages from this id are the user's own
    std::vector<Conversation> conversations;
    std::map<long long, Contact> contacts;
    /// The files that a message of the type names in its body, in the order in which it names them.
    std::function<std::vector<NamedFile>(const std::string& body, int type)> filesOf;
};

}  // namespace app::view
