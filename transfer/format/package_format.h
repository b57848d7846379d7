// The backup package on disk: its folders, its files and the keys of its JSON. Writers and readers use this one list.
// docs/formats/package.md describes the format for readers; a test holds its example against real output.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "host/json.h"
#include "transfer/records.h"

namespace chattransfer {

inline constexpr const char* kPackageName = "qelmsg_0";
inline constexpr const char* kMessagesFolder = "messages_0/";
inline constexpr const char* kAttachmentsFolder = "qelimfiles_0/";
inline constexpr const char* kMessageFileName = "msg_%d.mg";
inline constexpr std::size_t kMessageFileNameSize = 50;  // room for any number
inline constexpr const char* kRecentContactFileName = "recontact.mg";

/// What an entry of the day map holds before the next one is begun, so that one message file stays small.
inline constexpr std::size_t kMessagesPerEntry = 250;

/// What a file of a packed export holds before the next one is begun.
inline constexpr std::size_t kMessagesPerFile = 1000;

/// The status of every imported message. They are history: they count as delivered and read.
inline constexpr int kImportedStatus = 4;

inline constexpr const char* kVersionKey = "version";
inline constexpr const char* kMessagesKey = "msgs";  // of a file: its days; of a day: its messages
inline constexpr const char* kDateKey = "date";
inline constexpr const char* kYearKey = "year";
inline constexpr const char* kMonthKey = "month";
inline constexpr const char* kDayKey = "day";
inline constexpr const char* kRecentContactsKey = "recontact";

/// Joins the user ids of limitRange and relatedUsers.
inline constexpr const char* kListSeparator = ";";

/// What the readers do with a key that the writer writes.
enum class KeyUse {
    always,     ///< written and read
    writeOnly,  ///< written, and left alone by the readers
};

/// Calls visit(key, use, field) for each scalar key of a message object, in file order.
template <class Record, class Visit>
void forEachMessageKey(Record& record, Visit&& visit) {
    visit("sendUserID", KeyUse::always, record.fromeUserID);
    visit("receTargetID", KeyUse::always, record.toUserID);
    visit("sendTime", KeyUse::always, record.time_);
    visit("message", KeyUse::always, record.body);
    visit("messageType", KeyUse::always, record.msgType);
    visit("messageID", KeyUse::always, record.msgID);
    visit("format", KeyUse::always, record.formate);
    visit("lastMessageID", KeyUse::always, record.lastMsgID);
    visit("msgProperties", KeyUse::always, record.msgProperties);
    visit("activeType", KeyUse::always, record.activeType);
    visit("relatedMsgID", KeyUse::always, record.relatedMsgID);
    visit("securityLevel", KeyUse::writeOnly, record.securityLevel);
    visit("sourceID", KeyUse::always, record.sourceID);
    visit("senderSessionID", KeyUse::always, record.targetID);
}

/// Calls visit(key, field) for each list key of a message object; they follow the scalar keys.
template <class Record, class Visit>
void forEachMessageList(Record& record, Visit&& visit) {
    visit("#limitRange", record.limitRange);
    visit("#relatedUsers", record.relatedUsers);
}

/// The package in the folder `backup`, ending in "/".
[[nodiscard]] inline std::string packageRoot(const std::string& backup) {
    return backup + "/" + kPackageName + "/";
}

/// The version check of every file: the file states a version, and it is the expected one, byte for byte.
[[nodiscard]] bool isVersion(const std::optional<std::string>& stated, const std::string& expected);

/// A calendar day as the "date" object has it.
struct CalendarDay {
    long long year = 0;
    long long month = 0;
    long long day = 0;
};

/// The first three numbers of a day key; 0 for what is missing.
[[nodiscard]] CalendarDay dayOfKey(const std::string& dayKey, const char* separator);

/// The path of message file `number` in `folder` (which ends in "/"). Empty when it passes 259 bytes: such a file
/// counts as missing.
[[nodiscard]] std::string messageFilePath(const std::string& folder, int number);

}  // namespace chattransfer
