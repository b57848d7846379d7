#include "bench/tree.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "bench/floor/message_json.h"
#include "bench/names.h"
#include "bench/sqlite_handles.h"
#include "host/CAES.h"

namespace fs = std::filesystem;

namespace bench {
namespace {

std::string treeFolder(const std::string& backup) {
    return backup + "/qelbackup/" + kUser + "/";
}

void write(const fs::path& path, std::string_view bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

void encrypt(const fs::path& plain, const fs::path& encrypted) {
    std::array<char, 256> error{};
    CAES cipher;
    if (cipher.File_Aes_Go_Block(true, kKeyText, plain.c_str(), encrypted.c_str(), error.data()) != 0)
        throw std::runtime_error(std::string("cannot encrypt: ") + error.data());
}

std::string dateOf(sqlite3_stmt* row) {
    return R"("date":{"year":)" + std::to_string(sqlite3_column_int(row, 11)) + R"(,"month":)" +
           std::to_string(sqlite3_column_int(row, 12)) + R"(,"day":)" + std::to_string(sqlite3_column_int(row, 13)) +
           "}";
}

// The text of one message file: one day object per day.
class TreeFileText {
public:
    int messages() const { return messages_; }

    void add(sqlite3_stmt* row) {
        const std::string date = dateOf(row);
        if (date != day_) {
            text_.append(messages_ > 0 ? "]},{" : "{").append(date).append(R"(,"msgs":[)");
            day_ = date;
        } else {
            text_ += ',';
        }
        Output message;
        appendMessage(message, row);
        text_.append(message.data(), message.size());
        ++messages_;
    }

    std::string whole() const {
        return std::string(R"({"version":")") + kVersion + R"(","msgs":[)" + text_ + (messages_ > 0 ? "]}]}" : "]}");
    }

private:
    std::string text_;
    std::string day_;
    int messages_ = 0;
};

// The numbered message files of one conversation.
class ConversationFiles {
public:
    ConversationFiles(std::string folder, const MessageTreePlan& plan) : folder_(std::move(folder)), plan_(plan) {}

    void add(sqlite3_stmt* row) {
        if (plan_.perFile > 0 && file_.messages() == plan_.perFile) finish();
        file_.add(row);
    }

    void finish() {
        const std::string path = folder_ + "/" + std::to_string(number_++) + ".mg";
        const std::string decrypted = path + ".decrypt";
        write(decrypted, file_.whole());
        if (plan_.encrypted) {
            encrypt(decrypted, path);
            fs::remove(decrypted);
        }
        file_ = {};
    }

private:
    std::string folder_;
    const MessageTreePlan& plan_;
    TreeFileText file_;
    int number_ = 0;
};

}  // namespace

void makeMessageTree(const std::string& account, const MessageTreePlan& plan, const std::string& backup) {
    const Database db = openDatabase(account + "/db/imsg.db");
    const std::string prefix = "im_msg_";
    const Statement tables = prepare(db.get(), "select name from sqlite_master where type='table' order by name");
    fs::create_directories(treeFolder(backup) + "imfiles");
    while (step(tables.get())) {
        const std::string table(textOf(tables.get(), 0));
        if (table.compare(0, prefix.size(), prefix) != 0) continue;
        ConversationFiles files(treeFolder(backup) + table.substr(prefix.size()), plan);
        const Statement rows = prepare(db.get(), "select * from " + table);
        while (step(rows.get()))
            files.add(rows.get());
        files.finish();
    }
}

void makeEncryptedTree(int files, int bytes, const std::string& backup) {
    constexpr int kPerFolder = 100;
    const fs::path plain = treeFolder(backup) + "plain";
    for (int i = 0; i < files; ++i) {
        const fs::path folder = treeFolder(backup) + std::to_string(1000 + i / kPerFolder);
        write(plain, std::string(static_cast<std::size_t>(bytes), static_cast<char>('a' + i % 26)));
        fs::create_directories(folder);
        encrypt(plain, folder / (std::to_string(i) + ".mg"));
    }
    fs::remove(plain);
}

}  // namespace bench
