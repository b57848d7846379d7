// The floor of an export: what the same package costs when nothing is kept but its text. No transfer object, no
// records, no JSON tree: each selected row is written at once into the text of its day. Everything that an export of
// the project costs above this is the price of its records in memory and of its care (checked UTF-8, files flushed and
// renamed).
//
//   floor-export days|packed ACCOUNT TO
//
// Attachments are left out: the accounts that it is measured on name some but have none.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <map>
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

namespace bench {
namespace {

constexpr std::size_t kMessagesPerEntry = 250;
constexpr std::size_t kMessagesPerFile = 1000;

const std::string kFileBegin = std::string(R"({"version":")") + kVersion + R"(","msgs":[)";
constexpr std::string_view kFileEnd = "]}";
constexpr std::string_view kDayBegin = R"({"msgs":[)";

struct Date {
    int year, month, day;

    int number() const { return (year * 16 + month) * 32 + day; }
    std::string key(char separator) const {
        return std::to_string(year) + separator + std::to_string(month) + separator + std::to_string(day);
    }
    std::string end() const {
        return R"(],"date":{"year":)" + std::to_string(year) + R"(,"month":)" + std::to_string(month) + R"(,"day":)" +
               std::to_string(day) + "}}";
    }
};

// --- Text ---

void append(Output& output, std::string_view text) {
    output.take(put(output.reserve(text.size()), text));
}

BENCH_INLINE void appendNumber(Output& output, std::string_view key, sqlite3_stmt* row, int column) {
    char* out = put(output.reserve(key.size() + kNumberRoom), key);
    output.take(putNumber(out, sqlite3_column_int64(row, column)));
}

BENCH_INLINE void appendText(Output& output, std::string_view key, sqlite3_stmt* row, int column) {
    const std::string_view text = textOf(row, column);
    output.take(putQuoted(put(output.reserve(key.size() + quotedRoom(text.size())), key), text));
}

void appendMessage(Output& output, sqlite3_stmt* row) {
    forEachMessageKey([&output, row](std::string_view key, int column, auto member) BENCH_INLINED_LAMBDA {
        if constexpr (kIsText<decltype(member)>) {
            appendText(output, key, row, column);
        } else if constexpr (kIsList<decltype(member)>) {
            const std::string_view ids = textOf(row, column);
            output.take(putList(put(output.reserve(key.size() + ids.size() + 2), key), ids));
        } else {
            appendNumber(output, key, row, column);
        }
    });
    append(output, "}");
}

// --- Days ---

void writeFile(const std::string& path, std::initializer_list<std::string_view> pieces) {
    std::ofstream file(path, std::ios::binary);
    for (const std::string_view piece : pieces)
        file << piece;
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

// The messages that stand under one key: their text, joined by ",", and where each ends.
struct Entry {
    Date date{};
    Output text;
    std::vector<std::size_t> ends;
    std::string writtenAs;  // not empty: the text is in this file already

    void write(const std::string& path) const {
        writeFile(path, {kFileBegin, kDayBegin, text.text(), date.end(), kFileEnd});
    }

    std::string_view messages(std::size_t first, std::size_t last) const {
        if (first == last) return "";
        const std::size_t begin = first == 0 ? 0 : ends[first - 1] + 1;
        return text.text().substr(begin, ends[last - 1] - begin);
    }
};

class Entries {
public:
    // An entry that reaches the limit is written into the folder at once.
    Entries(char separator, std::size_t limit, std::string folder)
        : separator_(separator), limit_(limit), folder_(std::move(folder)) {}

    Entry& of(const Date& date) {
        if (current_ == nullptr || date.number() != currentDate_) {
            currentDate_ = date.number();
            current_ = &days_[currentDate_];
            if (current_->open == nullptr) open(*current_, date, "");
        }
        if (current_->open->ends.size() == limit_) openNext(*current_);
        return *current_->open;
    }

    const std::map<std::string, Entry>& inKeyOrder() const { return entries_; }

private:
    struct Day {
        Entry* open = nullptr;
        int overflow = 0;
    };

    void open(Day& day, const Date& date, const std::string& ending) {
        day.open = &entries_[date.key(separator_) + ending];
        day.open->date = date;
    }

    // The next entry of the day takes over the room of the full one. The number of a full entry's file is known only
    // when all keys are: until then it has a name of its own.
    void openNext(Day& day) {
        Entry& full = *day.open;
        full.writtenAs = folder_ + "full_" + std::to_string(early_++);
        full.write(full.writtenAs);
        open(day, full.date, "_" + std::to_string(++day.overflow));
        day.open->text = std::move(full.text);
        day.open->ends = std::move(full.ends);
        day.open->text.clear();
        day.open->ends.clear();
    }

    char separator_;
    std::size_t limit_;
    std::string folder_;
    int early_ = 0;
    std::map<std::string, Entry> entries_;
    std::unordered_map<int, Day> days_;
    Day* current_ = nullptr;
    int currentDate_ = 0;
};

void selectMessages(sqlite3* db, Entries& entries) {
    for (const std::string& table : messageTables(db)) {
        const Statement rows = prepare(db, "select * from " + table + kWhereSince);
        sqlite3_stmt* row = rows.get();
        while (step(row)) {
            Entry& entry =
                entries.of({sqlite3_column_int(row, 11), sqlite3_column_int(row, 12), sqlite3_column_int(row, 13)});
            if (!entry.ends.empty()) append(entry.text, ",");
            appendMessage(entry.text, row);
            entry.ends.push_back(entry.text.size());
        }
    }
}

// --- Files ---

std::string fileName(int number) {
    return "msg_" + std::to_string(number) + ".mg";
}

void writeDays(const Entries& entries, const std::string& folder) {
    int number = 0;
    for (const auto& [key, entry] : entries.inKeyOrder()) {
        const std::string path = folder + fileName(number++);
        if (entry.writtenAs.empty()) {
            entry.write(path);
        } else {
            std::filesystem::rename(entry.writtenAs, path);
        }
    }
}

// Files of a thousand messages. A full file inside the last day ends the package; elsewhere the next one begins with
// the day that filled it, even when nothing of that day is left.
void writePacked(const Entries& entries, const std::string& folder) {
    const auto& all = entries.inKeyOrder();
    std::ofstream file;
    std::size_t room = 0;
    std::size_t resume = 0;
    int number = 0;
    for (auto day = all.begin(); day != all.end();) {
        const Entry& entry = day->second;
        const bool begins = room == 0;
        if (begins) {
            room = kMessagesPerFile;
            file.open(folder + fileName(number++), std::ios::binary);
        }
        const std::size_t last = std::min(resume + room, entry.ends.size());
        file << (begins ? kFileBegin : ",") << kDayBegin << entry.messages(resume, last) << entry.date.end();
        room -= last - resume;
        const bool lastDay = std::next(day) == all.end();
        if (room == 0 || lastDay) {
            file << kFileEnd;
            file.close();
            if (!file) throw std::runtime_error("cannot write below " + folder);
        }
        resume = room == 0 && !lastDay ? last : 0;
        if (room != 0 || lastDay) ++day;
    }
}

void writeContacts(sqlite3* db, const std::string& folder) {
    const Statement list = prepare(db, kSelectContacts);
    step(list.get());
    const std::string begin = std::string(R"({"version":")") + kVersion + R"(","recontact":[)";
    writeFile(folder + "recontact.mg", {begin, textOf(list.get(), 0), kFileEnd});
}

void exportAccount(bool packed, const std::string& account, const std::string& to) {
    const Database db = openDatabase(account + "/db/imsg.db");
    const std::string folder = to + kMessageFolder;
    std::filesystem::create_directories(folder);
    std::filesystem::create_directories(to + kAttachmentFolder);
    Entries entries(packed ? '_' : ':', packed ? static_cast<std::size_t>(-1) : kMessagesPerEntry, folder);
    selectMessages(db.get(), entries);
    if (packed) return writePacked(entries, folder);
    writeDays(entries, folder);
    writeContacts(db.get(), folder);
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) try {
    const std::string_view layout = argc == 4 ? argv[1] : "";
    if (layout != "days" && layout != "packed") throw std::runtime_error("usage: floor-export days|packed ACCOUNT TO");
    bench::exportAccount(layout == "packed", argv[2], argv[3]);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "floor-export: %s\n", error.what());
    return 1;
}
