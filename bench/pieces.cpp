// The pieces of the work one by one, each beside what it replaces or builds on, so that a slower version shows where it
// got slower. `bench-pieces --benchmark_filter=...` chooses.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/account.h"
#include "bench/names.h"
#include "host/CAES.h"
#include "host/files/confined_files.h"
#include "host/files/whole_file.h"
#include "host/json.h"
#include "host/json/json_owner.h"
#include "host/tools.h"
#include "transfer/dbTrans.h"
#include "transfer/format/message_text.h"
#include "transfer/format/package_text.h"
#include "transfer/tables/conversation_writer.h"
#include "transfer/tables/message_table.h"

namespace fs = std::filesystem;

namespace {

using imsdk::st_dbMessageBean;
using tools::JsonDocument;

constexpr int kMessages = 1000;

// A folder with one account of one conversation, made once, gone at the end.
class Ground {
public:
    Ground() : path_((fs::temp_directory_path() / "chat-transfer-pieces-XXXXXX").string()) {
        if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder");
        bench::AccountPlan plan;
        plan.conversations = 1;
        plan.messages = kMessages;
        bench::makeAccount(plan, at("account"));
        bench::makeEmptyAccount(at("empty"));
    }
    ~Ground() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    Ground(const Ground&) = delete;
    Ground& operator=(const Ground&) = delete;
    Ground(Ground&&) = delete;
    Ground& operator=(Ground&&) = delete;

    std::string at(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

const Ground& ground() {
    static const Ground instance;
    return instance;
}

template <class Take>
void selectAll(imsdk::dbUtils& db, const std::string& table, Take take) {
    imsdk::dbDataReader reader = db.excuteQuery(("select * from " + table).c_str());
    st_dbMessageBean message;
    while (reader.read() != 0) {
        chattransfer::readMessageRow(reader, message);
        take(message);
    }
}

std::string messageTable(dbTrans& transfer) {
    transfer.getTables();
    for (const std::string& name : transfer.tableNames)
        if (name.rfind(chattransfer::kMessageTablePrefix, 0) == 0) return name;
    throw std::runtime_error("the account has no message table");
}

std::vector<st_dbMessageBean> sampleMessages() {
    dbTrans transfer;
    transfer.rootPath = ground().at("account");
    std::vector<st_dbMessageBean> messages;
    if (transfer.dbOpen() != 0) {
        selectAll(transfer.mainDb, messageTable(transfer),
                  [&messages](const st_dbMessageBean& message) { messages.push_back(message); });
    }
    return messages;
}

const std::vector<st_dbMessageBean>& messages() {
    static const std::vector<st_dbMessageBean> sample = sampleMessages();
    return sample;
}

std::string fileText() {
    chattransfer::MessageFileText file(bench::kVersion);
    file.begin();
    file.addDay({2019, 3, 7}, messages().data(), messages().data() + messages().size());
    return std::string(file.finish());
}

void countMessages(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<long long>(messages().size()));
}

// --- Parse: a message file of a thousand messages ---

void parseMessageFile(benchmark::State& state) {
    const std::string text = fileText();
    for (auto _ : state) {
        std::string copy = text;  // reading uses the text up
        benchmark::DoNotOptimize(chattransfer::readMessageFileText(copy));
    }
    countMessages(state);
}
BENCHMARK(parseMessageFile);

void parseMessageFileIntoTree(benchmark::State& state) {
    const std::string text = fileText();
    for (auto _ : state) {
        const JsonDocument document(json_parse_string(text.c_str()));
        benchmark::DoNotOptimize(document.get());
    }
    countMessages(state);
}
BENCHMARK(parseMessageFileIntoTree);

// --- Serialise: the same file ---

void serialiseMessageFile(benchmark::State& state) {
    chattransfer::MessageFileText file(bench::kVersion);
    for (auto _ : state) {
        file.begin();
        file.addDay({2019, 3, 7}, messages().data(), messages().data() + messages().size());
        benchmark::DoNotOptimize(file.finish().data());
    }
    countMessages(state);
}
BENCHMARK(serialiseMessageFile);

void buildAndSerialiseTree(benchmark::State& state) {
    std::vector<st_dbMessageBean> sample = messages();
    dbTrans transfer;
    for (auto _ : state) {
        const JsonDocument list(json_value_init_array());
        for (st_dbMessageBean& message : sample)
            json_array_append_value(json_value_get_array(list.get()), transfer.makeJson(2, &message));
        char* const text = json_serialize_to_string(list.get());
        benchmark::DoNotOptimize(text);
        json_free_serialized_string(text);
    }
    countMessages(state);
}
BENCHMARK(buildAndSerialiseTree);

// --- Databases ---

void selectMessages(benchmark::State& state) {
    dbTrans transfer;
    transfer.rootPath = ground().at("account");
    if (transfer.dbOpen() == 0) return state.SkipWithError("the account does not open");
    const std::string table = messageTable(transfer);
    for (auto _ : state)
        selectAll(transfer.mainDb, table, [](const st_dbMessageBean& message) { benchmark::DoNotOptimize(&message); });
    countMessages(state);
}
BENCHMARK(selectMessages);

// One transaction per thousand messages, as an import does; the rows are removed outside the measured time.
void insertMessages(benchmark::State& state) {
    dbTrans transfer;
    transfer.rootPath = ground().at("empty");
    if (transfer.dbOpen() == 0) return state.SkipWithError("the account does not open");
    transfer.getTables();
    chattransfer::TableIndex index(transfer.tableNames);
    const std::string table =
        chattransfer::openMessageTable(transfer.report, transfer.mainDb, index, messages().front().targetID);
    for (auto _ : state) {
        {
            const DbTranHelper transaction(&transfer.mainDb);
            imsdk::dbCommand insert(&transfer.mainDb, chattransfer::insertMessageStatement(table).c_str());
            for (const st_dbMessageBean& message : messages())
                chattransfer::insertMessage(transfer.report, transfer.mainDb, insert, message);
        }
        state.PauseTiming();
        transfer.mainDb.excuteNonQuery(("delete from " + table).c_str());
        state.ResumeTiming();
    }
    countMessages(state);
}
BENCHMARK(insertMessages);

// --- Cipher: the key is derived once, before the measured time ---

void decryptFile(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    const std::string plain = ground().at("plain");
    const std::string encrypted = ground().at("encrypted");
    std::array<char, 256> error{};
    CAES cipher;
    const bool ready =
        tools::writeWholeFile(plain, std::string(size, 'x')) &&
        cipher.File_Aes_Go_Block(true, bench::kKeyText, plain.c_str(), encrypted.c_str(), error.data()) == 0;
    if (!ready) return state.SkipWithError("the file cannot be encrypted");
    for (auto _ : state) {
        CAES one;  // an object serves one file
        if (one.File_Aes_Go_Block(false, bench::kKeyText, encrypted.c_str(), plain.c_str(), error.data()) != 0)
            return state.SkipWithError(error.data());
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(decryptFile)->Arg(20 << 10)->Arg(4 << 20);

// --- Paths ---

void makeUniqueName(benchmark::State& state) {
    const std::string url = "https://media.example.org/2019/03/a/picture%20of%20the%20garden.jpeg?size=large";
    for (auto _ : state)
        benchmark::DoNotOptimize(tools::getUniqueNameByUrl(url, true));
}
BENCHMARK(makeUniqueName);

void checkConfinedName(benchmark::State& state) {
    const std::string name = "2019/03/media/f4000000000000042.pdf";
    for (auto _ : state)
        benchmark::DoNotOptimize(tools::isConfinedName(name));
}
BENCHMARK(checkConfinedName);

void takeConversationOfPath(benchmark::State& state) {
    dbTrans transfer;
    std::string path = "/data/account/qelbackup/2000000000000001/1000000000000042/history.mg.decrypt";
    for (auto _ : state)
        benchmark::DoNotOptimize(transfer.getTargetIDFromePath(path));
}
BENCHMARK(takeConversationOfPath);

void convertSavePath(benchmark::State& state) {
    dbTrans transfer;
    std::string folder;
    for (auto _ : state)
        benchmark::DoNotOptimize(transfer.getSavePath("/a/bb/cccc/dd/picture.jpg", folder));
}
BENCHMARK(convertSavePath);

void splitPath(benchmark::State& state) {
    dbTrans transfer;
    const std::string path = "2019/03/media/f4000000000000042.pdf";
    for (auto _ : state) {
        benchmark::DoNotOptimize(transfer.baseName(path));
        benchmark::DoNotOptimize(transfer.filName(path));
        benchmark::DoNotOptimize(transfer.validatePath(path.c_str()));
    }
}
BENCHMARK(splitPath);

}  // namespace

BENCHMARK_MAIN();
