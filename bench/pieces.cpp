// The pieces of the work one by one, each beside what it replaces or builds on, so that a slower version shows where it
// got slower. `bench-pieces --benchmark_filter=...` chooses.
#include <benchmark/benchmark.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "app/places/private_folder.h"
#include "app/sample/sample_conversation.h"
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
#include "transfer/tables/message_table.h"

namespace fs = std::filesystem;

namespace {

using imsdk::st_dbMessageBean;
using tools::JsonDocument;

const std::vector<st_dbMessageBean>& messages() {
    static const std::vector<st_dbMessageBean> sample = [] {
        const auto noAttachments = [](int, long long, const std::string&, app::Random&) { return std::string(); };
        app::SampleWriter writer({}, {app::packageAttachments(), 2000}, noAttachments);
        return writer.messages(writer.conversation(0, 1000000000000000, bench::kUserId), 1000);
    }();
    return sample;
}

std::string_view writeFile(chattransfer::MessageFileText& file) {
    file.begin();
    file.addDay({2019, 3, 7}, messages().data(), messages().data() + messages().size());
    return file.finish();
}

std::string fileText() {
    chattransfer::MessageFileText file(bench::kVersion);
    return std::string(writeFile(file));
}

// Measures `work`, which handles all messages each time.
template <class Work>
void repeat(benchmark::State& state, Work work) {
    for (auto _ : state)
        work();
    state.SetItemsProcessed(state.iterations() * static_cast<long long>(messages().size()));
}

// --- Parse: a message file of a thousand messages ---

void parseMessageFile(benchmark::State& state) {
    const std::string text = fileText();
    repeat(state, [&text] {
        std::string copy = text;  // reading uses the text up
        benchmark::DoNotOptimize(chattransfer::readMessageFileText(copy));
    });
}
BENCHMARK(parseMessageFile);

void parseMessageFileIntoTree(benchmark::State& state) {
    const std::string text = fileText();
    repeat(state, [&text] { benchmark::DoNotOptimize(JsonDocument(json_parse_string(text.c_str())).get()); });
}
BENCHMARK(parseMessageFileIntoTree);

// --- Serialise: the same file ---

void serialiseMessageFile(benchmark::State& state) {
    chattransfer::MessageFileText file(bench::kVersion);
    repeat(state, [&file] { benchmark::DoNotOptimize(writeFile(file).data()); });
}
BENCHMARK(serialiseMessageFile);

void buildAndSerialiseTree(benchmark::State& state) {
    std::vector<st_dbMessageBean> sample = messages();
    dbTrans transfer;
    repeat(state, [&] {
        const JsonDocument list(json_value_init_array());
        for (st_dbMessageBean& message : sample)
            json_array_append_value(json_value_get_array(list.get()), transfer.makeJson(2, &message));
        char* const text = json_serialize_to_string(list.get());
        benchmark::DoNotOptimize(text);
        json_free_serialized_string(text);
    });
}
BENCHMARK(buildAndSerialiseTree);

// --- Databases: the same messages ---

const std::string& messageTable() {
    static const std::string name = "im_msg_" + std::to_string(messages().front().targetID);
    return name;
}

// Writes into the database of `account`, an empty one when there is none.
void insertInto(dbTrans& transfer, const app::PrivateFolder& account) {
    fs::create_directory(account.path() + "/db");
    std::ofstream(account.path() + "/db/imsg.db", std::ios::app).flush();
    transfer.rootPath = account.path();
    transfer.msgMap[messages().front().targetID] = messages();
    if (transfer.wtMsgToDB() != chattransfer::kSuccess) throw std::runtime_error("nothing was inserted");
}

void selectMessages(benchmark::State& state) {
    const app::PrivateFolder folder;
    dbTrans transfer;
    insertInto(transfer, folder);
    repeat(state, [&transfer] {
        imsdk::dbDataReader reader = transfer.mainDb.excuteQuery(("select * from " + messageTable()).c_str());
        st_dbMessageBean message;
        while (reader.read() != 0)
            chattransfer::readMessageRow(reader, message);
        benchmark::DoNotOptimize(message.msgID);
    });
}
BENCHMARK(selectMessages);

// One transaction per thousand messages; the rows are removed outside the measured time.
void insertMessages(benchmark::State& state) {
    const app::PrivateFolder folder;
    dbTrans transfer;
    repeat(state, [&] {
        insertInto(transfer, folder);
        state.PauseTiming();
        transfer.mainDb.excuteNonQuery(("delete from " + messageTable()).c_str());
        state.ResumeTiming();
    });
}
BENCHMARK(insertMessages);

// --- Cipher: the key is derived once, before the measured time ---

void runCipher(bool encrypt, const std::string& from, const std::string& to) {
    std::array<char, 256> error{};
    CAES cipher;  // an object serves one file
    if (cipher.File_Aes_Go_Block(encrypt, bench::kKeyText, from.c_str(), to.c_str(), error.data()) != 0)
        throw std::runtime_error(error.data());
}

void decryptFile(benchmark::State& state) {
    const app::PrivateFolder folder;
    const std::string plain = folder.path() + "/plain";
    const std::string encrypted = folder.path() + "/encrypted";
    if (!tools::writeWholeFile(plain, std::string(static_cast<std::size_t>(state.range(0)), 'x')))
        return state.SkipWithError("the file cannot be written");
    runCipher(true, plain, encrypted);
    for (auto _ : state)
        runCipher(false, encrypted, plain);
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(decryptFile)->Arg(20 << 10)->Arg(4 << 20);

// --- Paths ---

template <class Work>
void addPiece(const char* name, Work work) {
    benchmark::RegisterBenchmark(name, [work](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(work());
    });
}

void addPaths(dbTrans& transfer) {
    static const std::string name = "2019/03/media/f4000000000000042.pdf";
    static std::string path = "/data/account/qelbackup/2000000000000001/1000000000000042/history.mg.decrypt";
    static std::string folder;
    addPiece("makeUniqueName", [] {
        return tools::getUniqueNameByUrl("https://media.example.org/a/picture%20of%20the%20garden.jpeg?size=large",
                                         true);
    });
    addPiece("checkConfinedName", [] { return tools::isConfinedName(name); });
    addPiece("takeConversationOfPath", [&transfer] { return transfer.getTargetIDFromePath(path); });
    addPiece("convertSavePath", [&transfer] { return transfer.getSavePath("/a/bb/cccc/dd/picture.jpg", folder); });
    addPiece("splitPath", [&transfer] {
        return transfer.baseName(name) + transfer.filName(name) + transfer.validatePath(name.c_str());
    });
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    dbTrans transfer;
    addPaths(transfer);
    benchmark::RunSpecifiedBenchmarks();
}
