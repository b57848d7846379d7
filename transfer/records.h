// The records in transit: plain values, copied member by member. Fields are named after the database columns that store
// them, odd letters included; texts are UTF-8 as the databases hold them.
//
// Threads: plain values, used as such.
#pragma once

#include <string>

namespace imsdk {

/// One message: a row of a conversation's table "im_msg_<targetID>".
struct st_dbMessageBean {
    long long toUserID = 0;
    long long fromeUserID = 0;  ///< the sender; the column is spelled so
    std::string body;           ///< for messages with attachments a JSON text that names the files
    int msgType = 0;            ///< 3 voice, 5 image and 6 file carry attachments (trees also 28 and 89)
    long long msgID = 0;        ///< primary key of the table
    long long lastMsgID = 0;
    long long time_ = 0;
    int burnAfterReading = 0;
    int status = 0;
    long long targetID = 0;  ///< the conversation
    std::string msgProperties;
    int year_ = 0;  ///< year_, mon and day_ are the calendar day that exports select and group by
    int mon = 0;
    int day_ = 0;
    std::string limitRange;  ///< user ids joined by ";"
    std::string formate;     ///< the column is spelled so
    std::string extraText;   ///< for the host: no column and no package key
    int activeType = 0;
    long long relatedMsgID = 0;
    long long localID = 0;
    std::string relatedUsers;  ///< user ids joined by ";"
    std::string sourceID;
    std::string unReadState;
    long long extraValue = 0;  ///< for the host: carried, never read
    int securityLevel = 0;
    long long extraValue2 = 0;  ///< for the host: carried, never read; -1 in messages read from a package
};

/// One recent contact: a row of "im_reContact".
struct st_dbReContactBean {
    long long targetID = 0;  ///< primary key of the table
    std::string name;
    long long lastMsgid = 0;
    long long time = 0;
    signed char type = 0;
    signed char top = 0;  ///< the bit of value 4 pins the conversation to the top
    int msgType = 0;
    int activeType = 0;
    std::string wherefrom;
    std::string lastMsg;
    std::string msgProp;
    long long sendUserID = 0;
    int securityLevel = 0;
};

}  // namespace imsdk

/// One note: a row of "im_note" in the plugin database.
struct st_noteTrans {
    long long sendUserId = 0;
    long long targetID = 0;
    signed char type = 0;
    std::string content;
    signed char isReminder = 0;
    long long rmdTime = 0;
    signed char isArchive = 0;
    long long lastChgTime = 0;
};

/// One room: a row of "im_room" in the plugin database.
struct st_roomTrans {
    std::string roomName;
    std::string roomMember;  ///< user ids joined by ";"
    long long top = 0;
};
