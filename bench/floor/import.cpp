// The floor of an import: what the same rows cost when the package is read by a scanner that knows its writer. No
// transfer object, no JSON tree, no checks of foreign text; the journal, the synchronous setting and the page cache are
// SQLite's own defaults. Rows, their order and the tables are the project's.
//
//   floor-import import ACCOUNT FROM
//   floor-import insert ACCOUNT FROM-ACCOUNT
//
// The second is what the rows alone cost: the message tables of one account written into another, whose database is
// encrypted as it is where trees are, by the database itself in one transaction. It prints the number of rows.
//
// Attachments are part of an import: the bodies that name some are scanned, and each file is looked for in the package,
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

#include "bench/floor/json.h"
#include "bench/floor/records.h"
#include "bench/floor/sqlite_handles.h"
#include "bench/names.h"
#include "host/base/fixed_text.h"
#include "transfer/format/account_folders.h"
#include "transfer/format/attachment_body.h"
#include "transfer/tables/message_table.h"
#include "transfer/tables/recent_contact_table.h"

namespace bench {
namespace {

// Reads a file into the buffer, which serves all files; sixteen quotes follow its text. False when there is no such
// file.
bool readFile(const std::string& path, std::vector<char>& buffer, std::string_view& text) {
    constexpr std::size_t kBehind = 16;
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return false;
    struct stat status {};
    fstat(file, &status);
    const auto size = static_cast<std::size_t>(status.st_size);
    if (buffer.size() < size + kBehind) buffer.resize(2 * size + kBehind);
    const bool whole = read(file, buffer.data(), size) == status.st_size;
    close(file);
    if (!whole) throw std::runtime_error("cannot read " + path);
    std::fill_n(buffer.begin() + status.st_size, kBehind, '"');
    text = {buffer.data(), size};
    return true;
}

class Conversations {
public:
    void add(const Message& message) {
        if (last_ == nullptr || message.conversation != lastId_) {
            lastId_ = message.conversation;
            last_ = &messages_[lastId_];
        }
        last_->push_back(message);
    }

    std::vector<long long> ids() const {
        std::vector<long long> ids;
        for (const auto& [id, messages] : messages_)
            ids.push_back(id);
        std::sort(ids.begin(), ids.end());
        return ids;
    }
    const std::vector<Message>& of(long long id) const { return messages_.at(id); }

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

// The text behind a key of a body.
std::string_view valueOf(std::string_view body, std::string_view key) {
    const std::size_t begin = body.find(key) + key.size();
    return body.substr(begin, body.find('"', begin) - begin);
}

// Puts the attachments of a package back into the account.
class Attachments {
public:
    Attachments(const std::string& from, std::string account)
        : package_(from + kAttachmentFolder), account_(std::move(account)) {}

    void restore(int type, std::string_view body) {
        const std::string_view media = valueOf(body, R"("mediaUrl":")");
        if (type == chattransfer::kImageMessage) {
            for (const std::string_view path : {media, valueOf(body, R"("thumbUrl":")")})
                restore(chattransfer::kImageFolder, path.substr(path.rfind('/') + 1), path, "", false);
            return;
        }
        const bool voice = type == chattransfer::kVoiceMessage;
        const std::string_view name = valueOf(body, R"("fileName":")");
        restore(voice ? chattransfer::kAudioFolder : chattransfer::kFileFolder, name,
                media.substr(0, media.rfind('/') + 1), name, voice);
    }

private:
    // Copies `path` + `ending` of the package.
    void restore(const char* folder, std::string_view name, std::string_view path, std::string_view ending,
                 bool overwrite) {
        target_.assign(account_).append(folder).append(name);
        source_.assign(package_).append(path).append(ending);
        if ((overwrite || !isThere(target_)) && isThere(source_))
            std::filesystem::copy_file(source_, target_, std::filesystem::copy_options::overwrite_existing);
    }

    std::string package_;
    std::string account_;
    std::string source_;
    std::string target_;
};

// --- Reading ---

void scanMessage(Scanner& scan, Message& message) {
    forEachMessageKey([&scan, &message](std::string_view key, int /*column*/, auto member) BENCH_INLINED_LAMBDA {
        scan.expect(key);
        if constexpr (kIsText<decltype(member)>) {
            message.*member = scan.text();
        } else if constexpr (kIsList<decltype(member)>) {
            scan.skipList();
        } else {
            scan.number(message.*member);
        }
    });
    scan.expect("}");
}

// The date stands behind the messages of its day.
void scanDay(Scanner& scan, std::vector<Message>& day) {
    day.clear();
    scan.list(R"({"msgs":[)", [&] { scanMessage(scan, day.emplace_back()); });
    Message date{};
    scan.expect(R"(,"date":{"year":)");
    scan.number(date.year);
    scan.expect(R"(,"month":)");
    scan.number(date.month);
    scan.expect(R"(,"day":)");
    scan.number(date.day);
    scan.expect("}}");
    for (Message& message : day) {
        message.year = date.year;
        message.month = date.month;
        message.day = date.day;
    }
}

void readMessages(const std::string& folder, TextStore& texts, Attachments& attachments, Conversations& conversations) {
    std::vector<char> buffer;
    std::string_view text;
    std::vector<Message> day;
    for (int number = 0; readFile(folder + "msg_" + std::to_string(number) + ".mg", buffer, text); ++number) {
        Scanner scan(text, texts);
        scan.expect(R"({"version":)");
        if (scan.text() != kVersion) throw std::runtime_error("another version");
        scan.list(R"(,"msgs":[)", [&] {
            scanDay(scan, day);
            for (const Message& message : day) {
                if (chattransfer::carriesAttachments(message.type)) attachments.restore(message.type, message.body);
                conversations.add(message);
            }
        });
    }
}

// --- Writing ---

// The placeholders have the numbers of the columns, counted from 1.
constexpr const char* kInsertMessage =
    "insert into %s(toUserID,fromeUserID,body,msgType,msgID,lastMsgID,time_,burnAfterReading,status,targetID,"
    "msgProperties,year_,mon,day_,limitRange,formate,activeType,relatedMsgID,localID,relatedUsers,sourceID)"
    " values(?1,?2,?3,?4,?5,?6,?7,0,4,?10,?11,?12,?13,?14,'',?16,?17,?18,0,'',?21)";
constexpr int kInsertedColumns = 21;

void insertMessage(sqlite3_stmt* insert, const Message& message) {
    forEachMessageKey([insert, &message](std::string_view /*key*/, int column, auto member) BENCH_INLINED_LAMBDA {
        if constexpr (kIsText<decltype(member)>) {
            bindText(insert, column + 1, message.*member);
        } else if constexpr (!kIsList<decltype(member)>) {
            if (column < kInsertedColumns) sqlite3_bind_int64(insert, column + 1, message.*member);
        }
    });
    sqlite3_bind_int(insert, 12, message.year);
    sqlite3_bind_int(insert, 13, message.month);
    sqlite3_bind_int(insert, 14, message.day);
    step(insert);
    sqlite3_reset(insert);
}

void createMessageTable(sqlite3* db, const std::string& table) {
    run(db, tools::FixedText<1024>(chattransfer::kCreateMessageTable, table.c_str()).text());
}

void writeConversation(sqlite3* db, long long conversation, const std::vector<Message>& messages) {
    const std::string table = "im_msg_" + std::to_string(conversation);
    run(db, "begin immediate");
    createMessageTable(db, table);
    const Statement insert = prepare(db, tools::FixedText<1024>(kInsertMessage, table.c_str()).text());
    for (const Message& message : messages)
        insertMessage(insert.get(), message);
    run(db, "commit");
}

void importContacts(sqlite3* db, const std::string& folder) {
    std::vector<char> buffer;
    std::string_view text;
    if (!readFile(folder + "recontact.mg", buffer, text)) throw std::runtime_error("no recontact.mg");
    run(db, chattransfer::kCreateRecentContactTable);
    run(db, "begin immediate");
    const Statement insert = prepare(db, kInsertContacts);
    bindText(insert.get(), 1, text);
    step(insert.get());
    run(db, "commit");
}

void importPackage(const std::string& account, const std::string& from) {
    TextStore texts;
    Conversations conversations;
    Attachments attachments(from, account);
    readMessages(from + kMessageFolder, texts, attachments, conversations);
    const Database db = openDatabase(account + "/db/imsg.db");
    for (const long long id : conversations.ids())
        writeConversation(db.get(), id, conversations.of(id));
    importContacts(db.get(), from + kMessageFolder);
}

void insertRows(const std::string& account, const std::string& from) {
    const Database target = openDatabase(account + "/db/imsg.db", kKeyText);
    run(target.get(), "attach '" + from + "/db/imsg.db' as source key ''");
    run(target.get(), "begin immediate");
    for (const std::string& table : messageTables(openDatabase(from + "/db/imsg.db").get())) {
        createMessageTable(target.get(), table);
        run(target.get(), "insert into main." + table + " select * from source." + table);
    }
    run(target.get(), "commit");
    std::printf("%d\n", sqlite3_total_changes(target.get()));
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) try {
    const std::string_view operation = argc == 4 ? argv[1] : "";
    if (operation != "import" && operation != "insert")
        throw std::runtime_error("usage: floor-import import|insert ACCOUNT FROM");
    (operation == "import" ? bench::importPackage : bench::insertRows)(argv[2], argv[3]);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "floor-import: %s\n", error.what());
    return 1;
}
