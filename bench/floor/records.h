// The objects of a package, listed by hand for the floor: what a key is called, in the order of the project's writer,
// and which column it belongs to. The project has such lists of its own; the floor does without them on purpose, since
// it is what the project is held against.
#pragma once

#include <string_view>
#include <type_traits>

namespace bench {

struct Message {
    long long to, from, time, id, last, related, conversation;
    std::string_view body, format, properties, source;
    int type, active, security, year, month, day;
};

/// Ids joined by ";", an array in the package. An import passes over them.
struct IdList {};

using Text = std::string_view Message::*;

template <class Member>
inline constexpr bool kIsText = std::is_same_v<Member, Text>;
template <class Member>
inline constexpr bool kIsList = std::is_same_v<Member, IdList>;

/// Calls visit(key, column, member) for each key of a message object; `member` says by its type what stands there.
template <class Visit>
void forEachMessageKey(Visit&& visit) {
    visit(R"({"sendUserID":)", 1, &Message::from);
    visit(R"(,"receTargetID":)", 0, &Message::to);
    visit(R"(,"sendTime":)", 6, &Message::time);
    visit(R"(,"message":)", 2, &Message::body);
    visit(R"(,"messageType":)", 3, &Message::type);
    visit(R"(,"messageID":)", 4, &Message::id);
    visit(R"(,"format":)", 15, &Message::format);
    visit(R"(,"lastMessageID":)", 5, &Message::last);
    visit(R"(,"msgProperties":)", 10, &Message::properties);
    visit(R"(,"activeType":)", 16, &Message::active);
    visit(R"(,"relatedMsgID":)", 17, &Message::related);
    visit(R"(,"securityLevel":)", 22, &Message::security);
    visit(R"(,"sourceID":)", 20, &Message::source);
    visit(R"(,"senderSessionID":)", 9, &Message::conversation);
    visit(R"(,"#limitRange":)", 14, IdList());
    visit(R"(,"#relatedUsers":)", 19, IdList());
}

/// The list of recent contacts is short: SQLite's own functions write and read it. The project's writer escapes
/// slashes.
inline constexpr const char* kSelectContacts =
    "select replace(group_concat(json_object('targetID', targetID, 'lastMsgid', lastMsgid, 'time', time, 'type', type,"
    " 'top', top, 'wherefrom', wherefrom, 'msgType', msgType, 'activeType', activeType, 'lastMsg', lastMsg,"
    " 'msgProp', msgProp, 'name', name, 'securityLevel', securityLevel)), '/', '\\/') from im_reContact";
inline constexpr const char* kInsertContacts =
    "insert into im_reContact(targetID, lastMsgid, time, type, top, wherefrom, msgType, activeType, lastMsg, msgProp, "
    "name,"
    " securityLevel) select value->>'targetID', value->>'lastMsgid', value->>'time', value->>'type', value->>'top',"
    " value->>'wherefrom', value->>'msgType', value->>'activeType', value->>'lastMsg', value->>'msgProp', "
    "value->>'name',"
    " value->>'securityLevel' from json_each(?, '$.recontact')";

}  // namespace bench
