#include "bench/account.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "bench/names.h"
#include "bench/sqlite_handles.h"
#include "transfer/format/attachment_body.h"
#include "transfer/tables/message_table.h"
#include "transfer/tables/recent_contact_table.h"

namespace fs = std::filesystem;

namespace bench {
namespace {

constexpr long long kFirstConversation = 1000000000000000;
constexpr long long kFirstMessageId = 4000000000000000;
constexpr long long kFirstTime = 1546300800000;  // 2019-01-01
constexpr long long kMillisecondsPerDay = 86400000;

// A small generator of our own: the standard distributions differ between libraries.
class Numbers {
public:
    explicit Numbers(std::uint64_t seed) : state_(seed) {}

    std::uint64_t below(std::uint64_t limit) {
        state_ += 0x9E3779B97F4A7C15U;
        std::uint64_t mixed = state_;
        mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
        return (mixed ^ (mixed >> 31U)) % limit;
    }
    bool oneIn(std::uint64_t chances) { return below(chances) == 0; }

private:
    std::uint64_t state_;
};

struct Day {
    int year = 0;
    int month = 0;
    int day = 0;
};

// Days from 2019-01-01; the accounts span at most a few years without a leap day before 2020-02-29.
Day dayAfterFirst(long long index) {
    Day date{2019, 1, 1};
    for (; index > 0; --index) {
        constexpr std::array<int, 12> kLengths = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        const bool leap = date.month == 2 && date.year % 4 == 0;
        if (date.day++ < kLengths.at(static_cast<std::size_t>(date.month - 1)) + (leap ? 1 : 0)) continue;
        date.day = 1;
        if (date.month++ < 12) continue;
        date.month = 1;
        ++date.year;
    }
    return date;
}

constexpr std::array<std::string_view, 20> kWords = {
    "see", "you",    "tomorrow", "at",   "the", "station", "I",      "have",     "sent",    "pictures",
    "of",  "garden", "and",      "yes!", "our", "later",   "coffee", "perhaps?", "morning", "trains"};

// What needs an escape, or more than one byte per character.
constexpr std::array<std::string_view, 8> kSpecials = {
    "a \"quoted\" word", "and/or", "line\nbreak", "C:\\pictures", "明天见", "до завтра", "καλημέρα", "😀🎉"};

std::string makeText(Numbers& numbers) {
    constexpr std::size_t kShortest = 16;
    constexpr std::uint64_t kSpread = 128;
    const std::size_t length = kShortest + numbers.below(kSpread);
    std::string text;
    if (numbers.oneIn(4)) text.append(kSpecials.at(numbers.below(kSpecials.size()))) += ' ';
    while (text.size() < length)
        text.append(kWords.at(numbers.below(kWords.size()))) += ' ';
    text.pop_back();
    return text;
}

struct Message {
    long long id = 0;
    long long time = 0;
    long long last = 0;
    long long number = 0;
    long long from = 0;
    long long to = 0;
    long long conversation = 0;
    long long related = 0;
    int type = 1;
    Day day;
    std::string body;
    std::string properties;
    std::string limitRange;
    std::string relatedUsers;
};

std::string folderOfMonth(const Day& day) {
    return std::to_string(day.year) + "/" + std::to_string(day.month);
}

// Names the attachments in the body, and makes the file when the plan wants real ones.
void attach(const AccountPlan& plan, const std::string& root, Message& message) {
    const std::string folder = folderOfMonth(message.day);
    const std::string number = std::to_string(message.id);
    if (message.type == chattransfer::kImageMessage) {
        message.body = R"({"mediaUrl":")" + folder + "/p" + number + R"(.jpg","thumbUrl":")" + folder + "/t" + number +
                       R"(.jpg"})";
        return;
    }
    const bool voice = message.type == chattransfer::kVoiceMessage;
    const std::string name = (voice ? "v" : "f") + number + (voice ? ".amr" : ".pdf");
    message.body = R"({"fileName":")" + name + R"(","mediaUrl":")" + folder + R"(/media","size":20480})";
    if (plan.attachmentBytes == 0) return;
    std::ofstream file(root + chattransfer::kFileFolder + name, std::ios::binary);
    file << std::string(static_cast<std::size_t>(plan.attachmentBytes), static_cast<char>('a' + message.id % 26));
    if (!file.flush()) throw std::runtime_error("cannot write " + name);
}

int attachmentType(const AccountPlan& plan, Numbers& numbers) {
    if (plan.attachmentBytes != 0) return chattransfer::kFileMessage;
    constexpr std::array<int, 3> kTypes = {chattransfer::kVoiceMessage, chattransfer::kImageMessage,
                                           chattransfer::kFileMessage};
    return kTypes.at(numbers.below(kTypes.size()));
}

class Writer {
public:
    Writer(const AccountPlan& plan, const std::string& root) : plan_(plan), root_(root) {
        for (int day = 0; day < plan.days; ++day)
            days_.push_back(dayAfterFirst(day));
        const char* key = plan.keyed ? kKeyText : nullptr;
        db_ = openDatabase(root + "/db/imsg.db", true, key);
        openBack(key);
        // Only for the making: these settings are not stored in the file.
        run(db_.get(), "PRAGMA synchronous = off; PRAGMA cache_size = -262144");
    }

    double write() {
        Transaction transaction(db_.get());
        run(db_.get(), chattransfer::kCreateRecentContactTable);
        const Statement contact =
            prepare(db_.get(), "insert into im_reContact values(?,?,?,0,?,'search',1,0,?,'',?,?,0)");
        for (int conversation = 0; conversation < plan_.conversations; ++conversation)
            writeContact(contact.get(), conversation, writeConversation(conversation));
        transaction.commit();
        return written_ == 0 ? 0 : static_cast<double>(bodyBytes_) / static_cast<double>(written_);
    }

private:
    void openBack(const char* key) const {
        const Database back = openDatabase(root_ + "/db/backimsg.db", true, key);
        // The first write gives the file its header, and with a key its encryption.
        run(back.get(), "PRAGMA user_version = 0");
    }

    Message message(Numbers& numbers, int conversation, int index) const {
        Message message;
        message.conversation = kFirstConversation + conversation * 7919LL;
        message.number = index + 1;
        message.id = kFirstMessageId + index * 100000LL + conversation;
        message.last = index == 0 ? 0 : message.id - 100000;
        const long long day = static_cast<long long>(index) * plan_.days / plan_.messages;
        message.day = days_.at(static_cast<std::size_t>(day));
        message.time = kFirstTime + day * kMillisecondsPerDay + index % 86400 * 1000LL;
        const bool own = numbers.oneIn(2);
        message.from = own ? kUserId : message.conversation;
        message.to = own ? message.conversation : kUserId;
        message.body = makeText(numbers);
        if (numbers.oneIn(10)) message.properties = R"({"bubble":3})";
        if (numbers.oneIn(40))
            message.limitRange = std::to_string(kUserId) + ";" + std::to_string(message.conversation);
        if (index > 0 && numbers.oneIn(12)) {
            message.related = message.last;
            message.relatedUsers = std::to_string(message.conversation);
        }
        if (numbers.below(100) < static_cast<std::uint64_t>(plan_.attachmentsPerHundred)) {
            message.type = attachmentType(plan_, numbers);
            attach(plan_, root_, message);
        }
        return message;
    }

    Message writeConversation(int conversation) {
        Numbers numbers(static_cast<std::uint64_t>(conversation));
        const std::string table = chattransfer::messageTableName(kFirstConversation + conversation * 7919LL).text();
        run(db_.get(), tools::FixedText<1024>(chattransfer::kCreateMessageTable, table.c_str()).text());
        const Statement insert = prepare(db_.get(), "insert into " + table +
                                                        " values(?,?,?,?,?,?,?,0,4,?,?,?,?,?,?,'plain',0,?,?,?,'phone',"
                                                        "'',0)");
        Message last;
        for (int index = 0; index < plan_.messages; ++index) {
            last = message(numbers, conversation, index);
            if (index >= plan_.firstMessage) writeMessage(insert.get(), last);
        }
        return last;
    }

    void writeMessage(sqlite3_stmt* insert, const Message& message) {
        int index = 0;
        const auto number = [&](long long value) { sqlite3_bind_int64(insert, ++index, value); };
        const auto text = [&](const std::string& value) { bindText(insert, ++index, value); };
        number(message.to);
        number(message.from);
        text(message.body);
        number(message.type);
        number(message.id);
        number(message.last);
        number(message.time);
        number(message.conversation);
        text(message.properties);
        number(message.day.year);
        number(message.day.month);
        number(message.day.day);
        text(message.limitRange);
        number(message.related);
        number(message.number);
        text(message.relatedUsers);
        step(insert);
        sqlite3_reset(insert);
        ++written_;
        bodyBytes_ += message.body.size();
    }

    static void writeContact(sqlite3_stmt* insert, int conversation, const Message& last) {
        const std::string name = "Contact " + std::to_string(conversation);
        sqlite3_bind_int64(insert, 1, kFirstConversation + conversation * 7919LL);
        sqlite3_bind_int64(insert, 2, last.id);
        sqlite3_bind_int64(insert, 3, last.time);
        sqlite3_bind_int64(insert, 4, conversation == 0 ? chattransfer::kPinnedBit : 0);
        bindText(insert, 5, last.body);
        bindText(insert, 6, name);
        sqlite3_bind_int64(insert, 7, last.from);
        step(insert);
        sqlite3_reset(insert);
    }

    const AccountPlan& plan_;
    const std::string& root_;
    std::vector<Day> days_;
    Database db_;
    std::size_t bodyBytes_ = 0;
    long long written_ = 0;
};

void makeFolders(const std::string& root) {
    for (const char* folder : {"/db/plugin", "/audio", "/image", "/file", "/video"})
        fs::create_directories(root + folder);
}

}  // namespace

double makeAccount(const AccountPlan& plan, const std::string& root) {
    makeFolders(root);
    return Writer(plan, root).write();
}

void makeEmptyAccount(const std::string& root) {
    makeFolders(root);
    for (const char* name : {"/db/imsg.db", "/db/backimsg.db", "/db/plugin/kab.db"})
        std::ofstream(root + name).flush();
}

}  // namespace bench
