// The floor of an import: what the same rows cost when the package is read by a scanner that knows its writer. No
// transfer object, no JSON tree, no checks of foreign text; the journal, the synchronous setting and the page cache are
// SQLite's own defaults. Rows, their order and the tables are the project's.
//
//   floor-import FROM ACCOUNT
//
// Attachments are part of the work: the bodies that name some are scanned, and each file is looked for in the package,
// and in the account where one that is there is kept, by one plain stat each. The packages that it is measured on have
// none; a file that is there is copied without more ado.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "bench/floor/json_scan.h"
#include "bench/names.h"
#include "bench/sqlite_handles.h"
#include "transfer/format/attachment_body.h"
#include "transfer/tables/message_table.h"
#include "transfer/tables/recent_contact_table.h"

namespace bench {
namespace {

struct Message {
    long long to = 0;
    long long from = 0;
    long long time = 0;
    long long id = 0;
    long long last = 0;
    long long related = 0;
    std::string_view body;
    std::string_view format;
    std::string_view properties;
    std::string_view source;
    int type = 0;
    int active = 0;
    int year = 0;
    int month = 0;
    int day = 0;
};

struct Contact {
    long long target = 0;
    long long lastMessage = 0;
    long long time = 0;
    int type = 0;
    int top = 0;
    int messageType = 0;
    int active = 0;
    int security = 0;
    std::string_view whereFrom;
    std::string_view lastText;
    std::string_view properties;
    std::string_view name;
};

// One buffer for all files.
class FileReader {
public:
    /// False when there is no such file. Sixteen quotes follow the text.
    bool read(const std::string& path, std::string_view& text) {
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (file < 0) return false;
        std::size_t size = 0;
        for (;;) {
            if (bytes_.size() < size + kAtOnce + kBehind) bytes_.resize((size + kAtOnce) * 2 + kBehind);
            const ssize_t count = ::read(file, bytes_.data() + size, bytes_.size() - kBehind - size);
            if (count < 0) throw std::runtime_error("cannot read " + path);
            if (count == 0) break;
            size += static_cast<std::size_t>(count);
        }
        close(file);
        std::fill_n(bytes_.begin() + static_cast<std::ptrdiff_t>(size), kBehind, '"');
        text = {bytes_.data(), size};
        return true;
    }

private:
    static constexpr std::size_t kAtOnce = 1U << 16U;
    static constexpr std::size_t kBehind = 16;
    std::vector<char> bytes_;
};

class Conversations {
public:
    Message& add(long long id) {
        if (last_ == nullptr || id != lastId_) {
            last_ = &messages_[id];
            lastId_ = id;
        }
        return last_->emplace_back();
    }

    std::vector<std::pair<long long, const std::vector<Message>*>> inOrder() const {
        std::vector<std::pair<long long, const std::vector<Message>*>> order;
        for (const auto& [id, messages] : messages_)
            order.emplace_back(id, &messages);
        std::sort(order.begin(), order.end());
        return order;
    }

private:
    std::unordered_map<long long, std::vector<Message>> messages_;
    long long lastId_ = 0;
    std::vector<Message>* last_ = nullptr;
};

// --- Attachments ---

bool isThere(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

// Puts the attachments of a package back into the account.
class Attachments {
public:
    Attachments(const std::string& from, std::string account)
        : package_(from + kAttachmentFolder), account_(std::move(account)) {}

    void restore(int type, std::string_view body) {
        if (type == chattransfer::kImageMessage) {
            const std::size_t second = body.find(kThumbKey);
            if (!begins(body, kMediaKey) || second == std::string_view::npos) return;
            restoreImage(textAt(body, kMediaKey.size()));
            restoreImage(textAt(body, second + kThumbKey.size()));
        } else {
            const std::size_t second = body.find(kSecondMediaKey);
            if (!begins(body, kNameKey) || second == std::string_view::npos) return;
            const std::string_view name = textAt(body, kNameKey.size());
            const std::string_view media = textAt(body, second + kSecondMediaKey.size());
            restoreFile(type, media.substr(0, media.rfind('/')), name);
        }
    }

private:
    static constexpr std::string_view kMediaKey = R"({"mediaUrl":")";
    static constexpr std::string_view kThumbKey = R"(","thumbUrl":")";
    static constexpr std::string_view kNameKey = R"({"fileName":")";
    static constexpr std::string_view kSecondMediaKey = R"(","mediaUrl":")";

    static bool begins(std::string_view body, std::string_view key) { return body.substr(0, key.size()) == key; }

    static std::string_view textAt(std::string_view body, std::size_t begin) {
        return body.substr(begin, body.find('"', begin) - begin);
    }

    void restoreImage(std::string_view path) {
        target_.assign(account_).append(chattransfer::kImageFolder).append(path.substr(path.rfind('/') + 1));
        source_.assign(package_).append(path);
        if (!isThere(target_)) copy();
    }

    void restoreFile(int type, std::string_view folder, std::string_view name) {
        const bool voice = type == chattransfer::kVoiceMessage;
        target_.assign(account_).append(voice ? chattransfer::kAudioFolder : chattransfer::kFileFolder).append(name);
        source_.assign(package_).append(folder).append("/").append(name);
        if (voice || !isThere(target_)) copy();
    }

    void copy() const {
        if (isThere(source_))
            std::filesystem::copy_file(source_, target_, std::filesystem::copy_options::overwrite_existing);
    }

    std::string package_;
    std::string account_;
    std::string source_;
    std::string target_;
};

// --- Reading ---

// Reads one message; the conversation stands near its end.
long long scanMessage(Scanner& scan, Message& message) {
    scan.expect("{\"sendUserID\":");
    message.from = scan.number();
    scan.expect(",\"receTargetID\":");
    message.to = scan.number();
    scan.expect(",\"sendTime\":");
    message.time = scan.number();
    scan.expect(",\"message\":");
    message.body = scan.text();
    scan.expect(",\"messageType\":");
    message.type = static_cast<int>(scan.number());
    scan.expect(",\"messageID\":");
    message.id = scan.number();
    scan.expect(",\"format\":");
    message.format = scan.text();
    scan.expect(",\"lastMessageID\":");
    message.last = scan.number();
    scan.expect(",\"msgProperties\":");
    message.properties = scan.text();
    scan.expect(",\"activeType\":");
    message.active = static_cast<int>(scan.number());
    scan.expect(",\"relatedMsgID\":");
    message.related = scan.number();
    scan.expect(",\"securityLevel\":");
    scan.number();
    scan.expect(",\"sourceID\":");
    message.source = scan.text();
    scan.expect(",\"senderSessionID\":");
    const long long conversation = scan.number();
    scan.expect(",\"#limitRange\":");
    scan.skipList();
    scan.expect(",\"#relatedUsers\":");
    scan.skipList();
    scan.expect("}");
    return conversation;
}

// The date stands behind the messages of its day.
void scanDay(Scanner& scan, std::vector<std::pair<long long, Message>>& day) {
    day.clear();
    scan.expect("{\"msgs\":[");
    while (!scan.next("]")) {
        scan.next(",");
        auto& [conversation, message] = day.emplace_back();
        conversation = scanMessage(scan, message);
    }
    scan.expect(R"(,"date":{"year":)");
    const int year = static_cast<int>(scan.number());
    scan.expect(",\"month\":");
    const int month = static_cast<int>(scan.number());
    scan.expect(",\"day\":");
    const int number = static_cast<int>(scan.number());
    scan.expect("}}");
    for (auto& [conversation, message] : day) {
        message.year = year;
        message.month = month;
        message.day = number;
    }
}

void scanVersion(Scanner& scan) {
    scan.expect("{\"version\":");
    if (scan.text() != kVersion) throw std::runtime_error("another version");
}

void readMessages(const std::string& folder, TextStore& texts, Attachments& attachments, Conversations& conversations) {
    FileReader files;
    std::string_view text;
    std::vector<std::pair<long long, Message>> day;
    for (int number = 0; files.read(folder + "msg_" + std::to_string(number) + ".mg", text); ++number) {
        Scanner scan(text, texts);
        scanVersion(scan);
        scan.expect(",\"msgs\":[");
        while (!scan.next("]")) {
            scan.next(",");
            scanDay(scan, day);
            for (const auto& [conversation, message] : day) {
                if (chattransfer::carriesAttachments(message.type)) attachments.restore(message.type, message.body);
                conversations.add(conversation) = message;
            }
        }
    }
}

std::vector<Contact> readContacts(const std::string& folder, TextStore& texts) {
    std::vector<Contact> contacts;
    FileReader files;
    std::string_view text;
    if (!files.read(folder + "recontact.mg", text)) throw std::runtime_error("no recontact.mg");
    Scanner scan(text, texts);
    scanVersion(scan);
    scan.expect(",\"recontact\":[");
    while (!scan.next("]")) {
        scan.next(",");
        Contact& contact = contacts.emplace_back();
        scan.expect("{\"targetID\":");
        contact.target = scan.number();
        scan.expect(",\"lastMsgid\":");
        contact.lastMessage = scan.number();
        scan.expect(",\"time\":");
        contact.time = scan.number();
        scan.expect(",\"type\":");
        contact.type = static_cast<int>(scan.number());
        scan.expect(",\"top\":");
        contact.top = static_cast<int>(scan.number());
        scan.expect(",\"wherefrom\":");
        contact.whereFrom = scan.text();
        scan.expect(",\"msgType\":");
        contact.messageType = static_cast<int>(scan.number());
        scan.expect(",\"activeType\":");
        contact.active = static_cast<int>(scan.number());
        scan.expect(",\"lastMsg\":");
        contact.lastText = scan.text();
        scan.expect(",\"msgProp\":");
        contact.properties = scan.text();
        scan.expect(",\"name\":");
        contact.name = scan.text();
        scan.expect(",\"securityLevel\":");
        contact.security = static_cast<int>(scan.number());
        scan.expect("}");
    }
    return contacts;
}

// --- Writing ---

// The placeholders that stand for the same value in every imported row keep what is bound here.
void bindConstants(sqlite3_stmt* insert, long long conversation) {
    constexpr int kImportedStatus = 4;
    sqlite3_bind_int(insert, 8, 0);
    sqlite3_bind_int(insert, 9, kImportedStatus);
    sqlite3_bind_int64(insert, 10, conversation);
    bindText(insert, 15, "");
    sqlite3_bind_int64(insert, 19, 0);
    bindText(insert, 20, "");
}

void insertMessage(sqlite3_stmt* insert, const Message& message) {
    sqlite3_bind_int64(insert, 1, message.to);
    sqlite3_bind_int64(insert, 2, message.from);
    bindText(insert, 3, message.body);
    sqlite3_bind_int(insert, 4, message.type);
    sqlite3_bind_int64(insert, 5, message.id);
    sqlite3_bind_int64(insert, 6, message.last);
    sqlite3_bind_int64(insert, 7, message.time);
    bindText(insert, 11, message.properties);
    sqlite3_bind_int(insert, 12, message.year);
    sqlite3_bind_int(insert, 13, message.month);
    sqlite3_bind_int(insert, 14, message.day);
    bindText(insert, 16, message.format);
    sqlite3_bind_int(insert, 17, message.active);
    sqlite3_bind_int64(insert, 18, message.related);
    bindText(insert, 21, message.source);
    step(insert);
    sqlite3_reset(insert);
}

void writeConversation(sqlite3* db, long long conversation, const std::vector<Message>& messages) {
    const std::string table = "im_msg_" + std::to_string(conversation);
    Transaction transaction(db);
    run(db, tools::FixedText<1024>(chattransfer::kCreateMessageTable, table.c_str()).text());
    const Statement insert = prepare(
        db, "insert into " + table +
                "(toUserID,fromeUserID,body,msgType,msgID,lastMsgID,time_,burnAfterReading,status,targetID,"
                "msgProperties,year_,mon,day_,limitRange,formate,activeType,relatedMsgID,localID,relatedUsers,sourceID)"
                " values(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
    bindConstants(insert.get(), conversation);
    for (const Message& message : messages)
        insertMessage(insert.get(), message);
    transaction.commit();
}

void writeContacts(sqlite3* db, const std::vector<Contact>& contacts) {
    run(db, chattransfer::kCreateRecentContactTable);
    Transaction transaction(db);
    const Statement insert = prepare(db,
                                     "insert into im_reContact(targetID,lastMsgid,time,type,top,whereFrom,msgType,"
                                     "activeType,lastMsg,msgProp,name,securityLevel) values(?,?,?,?,?,?,?,?,?,?,?,?)");
    for (const Contact& contact : contacts) {
        sqlite3_bind_int64(insert.get(), 1, contact.target);
        sqlite3_bind_int64(insert.get(), 2, contact.lastMessage);
        sqlite3_bind_int64(insert.get(), 3, contact.time);
        sqlite3_bind_int(insert.get(), 4, contact.type);
        sqlite3_bind_int(insert.get(), 5, contact.top);
        bindText(insert.get(), 6, contact.whereFrom);
        sqlite3_bind_int(insert.get(), 7, contact.messageType);
        sqlite3_bind_int(insert.get(), 8, contact.active);
        bindText(insert.get(), 9, contact.lastText);
        bindText(insert.get(), 10, contact.properties);
        bindText(insert.get(), 11, contact.name);
        sqlite3_bind_int(insert.get(), 12, contact.security);
        step(insert.get());
        sqlite3_reset(insert.get());
    }
    transaction.commit();
}

void importPackage(const std::string& from, const std::string& account) {
    TextStore texts;
    Conversations conversations;
    const std::vector<Contact> contacts = readContacts(from + kMessageFolder, texts);
    Attachments attachments(from, account);
    readMessages(from + kMessageFolder, texts, attachments, conversations);
    const Database db = openDatabase(account + "/db/imsg.db");
    for (const auto& [conversation, messages] : conversations.inOrder())
        writeConversation(db.get(), conversation, *messages);
    writeContacts(db.get(), contacts);
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) try {
    if (argc != 3) {
        std::fputs("usage: floor-import FROM ACCOUNT\n", stderr);
        return 2;
    }
    bench::importPackage(argv[1], argv[2]);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "floor-import: %s\n", error.what());
    return 1;
}
