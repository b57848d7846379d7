// The floor of an export: what the same package costs when nothing is kept but its text. No transfer object, no
// records, no JSON tree: each selected row is written at once into the text of its day. Everything that an export of
// the project costs above this is the price of its records in memory and of its care (checked UTF-8, files flushed and
// renamed).
//
//   floor-export days|packed ACCOUNT TO
//
// Attachments are left out: the accounts that it is measured on name some but have none.
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "bench/floor/message_json.h"
#include "bench/names.h"
#include "bench/sqlite_handles.h"

namespace bench {
namespace {

constexpr std::size_t kMessagesPerEntry = 250;
constexpr std::size_t kMessagesPerFile = 1000;

struct Date {
    int year = 0;
    int month = 0;
    int day = 0;

    bool operator==(const Date& other) const { return year == other.year && month == other.month && day == other.day; }
};

struct HashDate {
    std::size_t operator()(const Date& date) const {
        return (static_cast<std::size_t>(date.year) * 16 + static_cast<std::size_t>(date.month)) * 32 +
               static_cast<std::size_t>(date.day);
    }
};

// The pieces of one file, written together.
class Pieces {
public:
    void add(std::string_view piece) {
        // The system's type has no const form; writing does not change the bytes.
        pieces_.push_back({const_cast<char*>(piece.data()), piece.size()});  // NOLINT(*-const-cast)
    }

    void write(const std::string& path) {
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        bool whole = file >= 0;
        for (std::size_t i = 0; whole && i < pieces_.size(); i += kAtOnce)
            whole = writeSome(file, pieces_.data() + i, std::min(kAtOnce, pieces_.size() - i));
        if (close(file) != 0 || !whole) throw std::runtime_error("cannot write " + path);
        pieces_.clear();
    }

private:
    static constexpr std::size_t kAtOnce = 1024;  // the system takes no more

    static bool writeSome(int file, const iovec* pieces, std::size_t count) {
        std::size_t size = 0;
        for (std::size_t i = 0; i < count; ++i)
            size += pieces[i].iov_len;
        return writev(file, pieces, static_cast<int>(count)) == static_cast<ssize_t>(size);
    }

    std::vector<iovec> pieces_;
};

const std::string kFileBegin = std::string(R"({"version":")") + kVersion + R"(","msgs":[)";
constexpr std::string_view kFileEnd = "]}";
constexpr std::string_view kDayBegin = R"({"msgs":[)";

std::string dayEnd(const Date& date) {
    return R"(],"date":{"year":)" + std::to_string(date.year) + R"(,"month":)" + std::to_string(date.month) +
           R"(,"day":)" + std::to_string(date.day) + "}}";
}

// The messages that stand under one key: their text, joined by ",", and where each ends.
struct Entry {
    std::string key;
    Date date;
    Output text;
    std::vector<std::size_t> ends;
    std::string writtenAs;  // not empty: the text is in this file already
};

// Writes entries as files of their own.
class EntryFiles {
public:
    explicit EntryFiles(std::string folder) : folder_(std::move(folder)) {}

    // The entry's number is known only when all keys are: until then it has a name of its own.
    void writeEarly(Entry& entry) {
        entry.writtenAs = folder_ + "full_" + std::to_string(early_++);
        write(entry, entry.writtenAs);
    }

    void finish(const Entry& entry, int number) {
        const std::string path = folder_ + "msg_" + std::to_string(number) + ".mg";
        if (entry.writtenAs.empty()) {
            write(entry, path);
        } else if (std::rename(entry.writtenAs.c_str(), path.c_str()) != 0) {
            throw std::runtime_error("cannot name " + path);
        }
    }

private:
    void write(const Entry& entry, const std::string& path) {
        const std::string end = dayEnd(entry.date);
        file_.add(kFileBegin);
        file_.add(kDayBegin);
        file_.add({entry.text.data(), entry.text.size()});
        file_.add(end);
        file_.add(kFileEnd);
        file_.write(path);
    }

    std::string folder_;
    Pieces file_;
    int early_ = 0;
};

class Entries {
public:
    // Without a limit, `files` is not used and may be null.
    Entries(char separator, std::size_t limit, EntryFiles* files)
        : separator_(separator), limit_(limit), files_(files) {}

    Entry& of(const Date& date) {
        if (current_ == nullptr || !(currentDate_ == date)) {
            current_ = &days_[date];
            currentDate_ = date;
            if (current_->open == nullptr) open(*current_, dayKey(date), date);
        }
        if (current_->open->ends.size() == limit_) openNext(*current_, date);
        return *current_->open;
    }

    std::vector<std::unique_ptr<Entry>>& inKeyOrder() {
        std::sort(entries_.begin(), entries_.end(), [](const auto& a, const auto& b) { return a->key < b->key; });
        return entries_;
    }

private:
    struct DayState {
        Entry* open = nullptr;
        int overflow = 0;
    };

    std::string dayKey(const Date& date) const {
        return std::to_string(date.year) + separator_ + std::to_string(date.month) + separator_ +
               std::to_string(date.day);
    }

    void open(DayState& day, std::string key, const Date& date) {
        entries_.push_back(std::make_unique<Entry>());
        day.open = entries_.back().get();
        day.open->key = std::move(key);
        day.open->date = date;
    }

    // The next entry of the day takes over the room of the full one.
    void openNext(DayState& day, const Date& date) {
        Entry& full = *day.open;
        files_->writeEarly(full);
        open(day, dayKey(date) + "_" + std::to_string(++day.overflow), date);
        day.open->text = std::move(full.text);
        day.open->ends = std::move(full.ends);
        day.open->text.clear();
        day.open->ends.clear();
    }

    char separator_;
    std::size_t limit_;
    EntryFiles* files_;
    std::vector<std::unique_ptr<Entry>> entries_;
    std::unordered_map<Date, DayState, HashDate> days_;
    DayState* current_ = nullptr;
    Date currentDate_;
};

std::vector<std::string> messageTables(sqlite3* db) {
    std::vector<std::string> names;
    const Statement list = prepare(db, "select name from sqlite_master where type='table'");
    while (step(list.get())) {
        const std::string_view name = textOf(list.get(), 0);
        if (name.substr(0, 7) == "im_msg_") names.emplace_back(name);
    }
    return names;
}

std::string selection(const std::string& table) {
    const std::string year = std::to_string(kSinceYear);
    const std::string month = std::to_string(kSinceMonth);
    const std::string day = std::to_string(kSinceDay);
    return "select * from " + table + " where (year_ > " + year + ") or (year_ = " + year + " and mon > " + month +
           ") or (year_ = " + year + " and mon = " + month + " and day_ >= " + day + ")";
}

void selectMessages(sqlite3* db, Entries& entries) {
    for (const std::string& table : messageTables(db)) {
        const Statement rows = prepare(db, selection(table));
        sqlite3_stmt* row = rows.get();
        while (step(row)) {
            Entry& entry =
                entries.of({sqlite3_column_int(row, 11), sqlite3_column_int(row, 12), sqlite3_column_int(row, 13)});
            if (!entry.ends.empty()) entry.text.take(put(entry.text.reserve(1), ","));
            appendMessage(entry.text, row);
            entry.ends.push_back(entry.text.size());
        }
    }
}

void finishDays(Entries& entries, EntryFiles& files) {
    int number = 0;
    for (const std::unique_ptr<Entry>& entry : entries.inKeyOrder())
        files.finish(*entry, number++);
}

// The messages [first, last) of an entry.
std::string_view messagesOf(const Entry& entry, std::size_t first, std::size_t last) {
    if (first == last) return "";
    const std::size_t begin = first == 0 ? 0 : entry.ends[first - 1] + 1;
    return {entry.text.data() + begin, entry.ends[last - 1] - begin};
}

// Files of a thousand messages. A full file inside the last day ends the package; elsewhere the next one begins with
// the day that filled it, even when nothing of that day is left.
void writePacked(Entries& entries, const std::string& folder) {
    const auto& all = entries.inKeyOrder();
    std::vector<std::string> ends;
    ends.reserve(all.size());
    for (const auto& entry : all)
        ends.push_back(dayEnd(entry->date));
    Pieces file;
    std::size_t room = 0;
    std::size_t resume = 0;
    int number = 0;
    for (std::size_t i = 0; i < all.size();) {
        const bool begins = room == 0;
        if (begins) room = kMessagesPerFile;
        const std::size_t last = std::min(resume + room, all[i]->ends.size());
        file.add(begins ? std::string_view(kFileBegin) : std::string_view(","));
        file.add(kDayBegin);
        file.add(messagesOf(*all[i], resume, last));
        file.add(ends[i]);
        room -= last - resume;
        const bool lastDay = i + 1 == all.size();
        if (room == 0 || lastDay) {
            file.add(kFileEnd);
            file.write(folder + "msg_" + std::to_string(number++) + ".mg");
        }
        resume = room == 0 && !lastDay ? last : 0;
        if (room != 0 || lastDay) ++i;
    }
}

void appendContact(Output& output, sqlite3_stmt* row) {
    struct Key {
        std::string_view before;
        int column;
        bool text;
    };
    constexpr std::array<Key, 12> kKeys = {{{"{\"targetID\":", 0, false},
                                            {",\"lastMsgid\":", 1, false},
                                            {",\"time\":", 2, false},
                                            {",\"type\":", 3, false},
                                            {",\"top\":", 4, false},
                                            {",\"wherefrom\":", 5, true},
                                            {",\"msgType\":", 6, false},
                                            {",\"activeType\":", 7, false},
                                            {",\"lastMsg\":", 8, true},
                                            {",\"msgProp\":", 9, true},
                                            {",\"name\":", 10, true},
                                            {",\"securityLevel\":", 12, false}}};
    for (const Key& key : kKeys) {
        const std::string_view text = key.text ? textOf(row, key.column) : std::string_view();
        char* out = put(output.reserve(key.before.size() + kNumberRoom + quotedRoom(text.size())), key.before);
        output.take(key.text ? putQuoted(out, text) : putNumber(out, sqlite3_column_int64(row, key.column)));
    }
    output.take(put(output.reserve(1), "}"));
}

Output contactList(sqlite3* db) {
    Output list;
    const Statement rows = prepare(db, "select * from im_reContact");
    while (step(rows.get())) {
        if (list.size() != 0) list.take(put(list.reserve(1), ","));
        appendContact(list, rows.get());
    }
    return list;
}

void writeContacts(const Output& contacts, const std::string& folder) {
    const std::string begin = std::string(R"({"version":")") + kVersion + R"(","recontact":[)";
    Pieces file;
    file.add(begin);
    file.add({contacts.data(), contacts.size()});
    file.add(kFileEnd);
    file.write(folder + "recontact.mg");
}

void exportAccount(bool packed, const std::string& account, const std::string& to) {
    const Database db = openDatabase(account + "/db/imsg.db");
    const std::string folder = to + kMessageFolder;
    std::filesystem::create_directories(folder);
    std::filesystem::create_directories(to + kAttachmentFolder);
    if (packed) {
        Entries entries('_', static_cast<std::size_t>(-1), nullptr);
        selectMessages(db.get(), entries);
        writePacked(entries, folder);
        return;
    }
    const Output contacts = contactList(db.get());
    EntryFiles files(folder);
    Entries entries(':', kMessagesPerEntry, &files);
    selectMessages(db.get(), entries);
    finishDays(entries, files);
    writeContacts(contacts, folder);
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) try {
    const std::string_view layout = argc == 4 ? argv[1] : "";
    if (layout != "days" && layout != "packed") {
        std::fputs("usage: floor-export days|packed ACCOUNT TO\n", stderr);
        return 2;
    }
    bench::exportAccount(layout == "packed", argv[2], argv[3]);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "floor-export: %s\n", error.what());
    return 1;
}
