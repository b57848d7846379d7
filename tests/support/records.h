// Records of which every field holds something else.
#pragma once

#include "transfer/records.h"

namespace test {

inline imsdk::st_dbMessageBean fullMessage() {
    imsdk::st_dbMessageBean message;
    message.toUserID = 1;
    message.fromeUserID = 2;
    message.body = "body";
    message.msgType = 3;
    message.msgID = 4;
    message.lastMsgID = 5;
    message.time_ = 6;
    message.burnAfterReading = 7;
    message.status = 8;
    message.targetID = 9;
    message.msgProperties = "properties";
    message.year_ = 10;
    message.mon = 11;
    message.day_ = 12;
    message.limitRange = "13;14";
    message.formate = "format";
    message.activeType = 15;
    message.relatedMsgID = 16;
    message.localID = 17;
    message.relatedUsers = "18;19";
    message.sourceID = "source";
    message.unReadState = "unread";
    message.securityLevel = 20;
    message.extraText = "extra";
    return message;
}

inline imsdk::st_dbReContactBean fullContact() {
    imsdk::st_dbReContactBean contact;
    contact.targetID = 5;
    contact.name = "name";
    contact.lastMsgid = 2;
    contact.time = 3;
    contact.type = -4;
    contact.top = 4;
    contact.msgType = 300;
    contact.activeType = 6;
    contact.wherefrom = "where";
    contact.lastMsg = "last/";
    contact.msgProp = "prop";
    contact.sendUserID = 99;
    contact.securityLevel = 8;
    return contact;
}

}  // namespace test
