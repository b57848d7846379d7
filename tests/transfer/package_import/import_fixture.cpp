#include "tests/transfer/package_import/import_fixture.h"

#include <algorithm>
#include <sstream>

namespace test {

std::string messageJson(long long conversation, long long id, const std::string& more) {
    return R"({"senderSessionID":)" + std::to_string(conversation) + R"(,"messageID":)" + std::to_string(id) + more +
           "}";
}

std::string dayJson(const std::string& messages, const std::string& more) {
    return R"({"msgs":[)" + messages + R"(],"date":{"year":2019,"month":3,"day":7})" + more + "}";
}

std::string fileJson(const std::string& days) {
    return R"({"version":"1.0","msgs":[)" + days + "]}";
}

std::string contactsJson(const std::string& contacts) {
    return R"({"version":"1.0","recontact":[)" + contacts + "]}";
}

std::string smallFile(long long conversation, long long id) {
    return fileJson(dayJson(messageJson(conversation, id)));
}

imsdk::st_dbMessageBean messageOf(long long conversation, long long id, const std::string& body) {
    imsdk::st_dbMessageBean record;
    record.targetID = conversation;
    record.msgID = id;
    record.body = body;
    return record;
}

imsdk::st_dbReContactBean contactOf(long long targetID, long long time, int top) {
    imsdk::st_dbReContactBean contact;
    contact.targetID = targetID;
    contact.time = time;
    contact.top = static_cast<signed char>(top);
    return contact;
}

std::string describe(const imsdk::st_dbMessageBean& record) {
    std::ostringstream text;
    text << "toUserID " << record.toUserID << ", fromeUserID " << record.fromeUserID << ", body '" << record.body
         << "', msgType " << record.msgType << ", msgID " << record.msgID << ", lastMsgID " << record.lastMsgID
         << ", time_ " << record.time_ << ", burnAfterReading " << record.burnAfterReading << ", status "
         << record.status << ", targetID " << record.targetID << ", msgProperties '" << record.msgProperties
         << "', year_ " << record.year_ << ", mon " << record.mon << ", day_ " << record.day_ << ", limitRange '"
         << record.limitRange << "', formate '" << record.formate << "', extraText '" << record.extraText
         << "', activeType " << record.activeType << ", relatedMsgID " << record.relatedMsgID << ", localID "
         << record.localID << ", relatedUsers '" << record.relatedUsers << "', sourceID '" << record.sourceID
         << "', unReadState '" << record.unReadState << "', extraValue " << record.extraValue << ", securityLevel "
         << record.securityLevel << ", extraValue2 " << record.extraValue2;
    return text.str();
}

std::string describe(const imsdk::st_dbReContactBean& record) {
    std::ostringstream text;
    text << "targetID " << record.targetID << ", name '" << record.name << "', lastMsgid " << record.lastMsgid
         << ", time " << record.time << ", type " << static_cast<int>(record.type) << ", top "
         << static_cast<int>(record.top) << ", msgType " << record.msgType << ", activeType " << record.activeType
         << ", wherefrom '" << record.wherefrom << "', lastMsg '" << record.lastMsg << "', msgProp '" << record.msgProp
         << "', sendUserID " << record.sendUserID << ", securityLevel " << record.securityLevel;
    return text.str();
}

ImportFixture::ImportFixture() {
    transfer_.rootPath = dir_.at("account");
    transfer_.backupPath = dir_.at("backup");
    transfer_.packageSubDir = "100";
    transfer_.packageVersion = "1.0";
    transfer_.progressListener = &listener_;
    transfer_.progressContext = 7;
    dir_.makeDir(messagesFolder_);
    transfer_.imFileDir = dir_.makeDir(attachmentsFolder_);
    for (const char* folder : {"account/audio", "account/file", "account/image"})
        dir_.makeDir(folder);
    runSql(mainPath(), {});
    runSql(backPath(), {});
}

std::string ImportFixture::messageFile(int number) const {
    return messagesFolder_ + "msg_" + std::to_string(number) + ".mg";
}

void ImportFixture::writeFile(int number, const std::string& bytes) const {
    dir_.write(messageFile(number), bytes);
}

void ImportFixture::writeContacts(const std::string& bytes) const {
    dir_.write(messagesFolder_ + "recontact.mg", bytes);
}

void ImportFixture::writeAttachment(const std::string& name, const std::string& bytes) const {
    dir_.write(attachmentsFolder_ + name, bytes);
}

std::string ImportFixture::idsIn(const std::string& table) const {
    return mainRows("select coalesce(group_concat(msgID, ' '), '') from (select msgID from " + table +
                    " order by msgID)");
}

void ImportFixture::collect(long long conversation, const std::vector<long long>& ids) {
    for (const long long id : ids)
        transfer_.msgMap[conversation].push_back(messageOf(conversation, id));
}

imsdk::st_dbMessageBean ImportFixture::readOnly(const std::string& file) {
    writeFile(0, file);
    transfer_.msgMap.clear();
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    if (transfer_.msgMap.size() != 1 || transfer_.msgMap.begin()->second.size() != 1) {
        ADD_FAILURE() << "not exactly one message in " << file;
        return {};
    }
    return transfer_.msgMap.begin()->second.front();
}

std::string ImportFixture::collectedIds(long long conversation) {
    const auto found = transfer_.msgMap.find(conversation);
    return found != transfer_.msgMap.end() ? idsOf(found->second) : "none";
}

bool ImportFixture::reported(const std::string& what) const {
    const std::vector<TransferReport::Skipped>& skipped = transfer_.report.skipped;
    return std::any_of(skipped.begin(), skipped.end(), [&what](const TransferReport::Skipped& one) {
        return one.what.find(what) != std::string::npos;
    });
}

}  // namespace test
