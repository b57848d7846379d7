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

// A file with the messages.
std::string fileText() {
    chattransfer::MessageFileText file(bench::kVersion);
    return std::string(writeFile(file));
}

void serialiseTree(dbTrans& transfer, std::vector<st_dbMessageBean>& sample) {
    const JsonDocument list(json_value_init_array());
    for (st_dbMessageBean& message : sample)
        json_array_append_value(json_value_get_array(list.get()), transfer.makeJson(2, &message));
    char* const text = json_serialize_to_string(list.get());
    benchmark::DoNotOptimize(text);
    json_free_serialized_string(text);
}

// An account with the messages, and the statement that reads or removes them.
class SampleAccount {
public:
    SampleAccount() {
        fs::create_directory(folder_.path() + "/db");
        std::ofstream(folder_.path() + "/db/imsg.db").flush();
        transfer_.rootPath = folder_.path();
        transfer_.msgMap[messages().front().targetID] = messages();
        insert();
    }

    void insert() {
        if (transfer_.wtMsgToDB() != chattransfer::kSuccess) throw std::runtime_error("nothing was inserted");
    }
    void remove() { transfer_.mainDb.excuteNonQuery(("delete" + fromTable()).c_str()); }

    void select() {
        imsdk::dbDataReader reader = transfer_.mainDb.excuteQuery(("select *" + fromTable()).c_str());
        st_dbMessageBean message;
        while (reader.read() != 0)
            chattransfer::readMessageRow(reader, message);
        benchmark::DoNotOptimize(message.msgID);
    }

private:
    static std::string fromTable() { return " from im_msg_" + std::to_string(messages().front().targetID); }

    app::PrivateFolder folder_;
    dbTrans transfer_;
};

void runCipher(bool encrypt, const std::string& from, const std::string& to) {
    std::array<char, 256> error{};
    CAES cipher;  // an object serves one file
    if (cipher.File_Aes_Go_Block(encrypt, bench::kKeyText, from.c_str(), to.c_str(), error.data()) != 0)
        throw std::runtime_error(error.data());
}

// The key is derived once, before the measured time.
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

// `items`: how many `work` handles each time.
template <class Work>
void add(const char* name, std::size_t items, Work work) {
    benchmark::RegisterBenchmark(name, [items, work](benchmark::State& state) {
        for (auto _ : state)
            work(state);
        state.SetItemsProcessed(state.iterations() * static_cast<long long>(items));
    });
}

void addMessages(dbTrans& transfer, SampleAccount& account) {
    static const std::string text = fileText();
    static chattransfer::MessageFileText file(bench::kVersion);
    static std::vector<st_dbMessageBean> sample = messages();
    const std::size_t items = sample.size();
    add("parseMessageFile", items, [](auto& /*state*/) {
        std::string copy = text;  // reading uses the text up
        benchmark::DoNotOptimize(chattransfer::readMessageFileText(copy));
    });
    add("parseMessageFileIntoTree", items,
        [](auto& /*state*/) { benchmark::DoNotOptimize(JsonDocument(json_parse_string(text.c_str())).get()); });
    add("serialiseMessageFile", items, [](auto& /*state*/) { benchmark::DoNotOptimize(writeFile(file).data()); });
    add("buildAndSerialiseTree", items, [&transfer](auto& /*state*/) { serialiseTree(transfer, sample); });
    add("selectMessages", items, [&account](auto& /*state*/) { account.select(); });
    add("insertMessages", items, [&account](auto& state) {
        state.PauseTiming();
        account.remove();
        state.ResumeTiming();
        account.insert();
    });
}

void addPaths(dbTrans& transfer) {
    static const std::string name = "2019/03/media/f4000000000000042.pdf";
    static std::string path = "/data/account/qelbackup/2000000000000001/1000000000000042/history.mg.decrypt";
    static std::string folder;
    const auto addPath = [](const char* title, auto work) {
        add(title, 1, [work](auto& /*state*/) { benchmark::DoNotOptimize(work()); });
    };
    addPath("makeUniqueName", [] {
        return tools::getUniqueNameByUrl("https://media.example.org/a/picture%20of%20the%20garden.jpeg?size=large",
                                         true);
    });
    addPath("checkConfinedName", [] { return tools::isConfinedName(name); });
    addPath("takeConversationOfPath", [&transfer] { return transfer.getTargetIDFromePath(path); });
    addPath("convertSavePath", [&transfer] { return transfer.getSavePath("/a/bb/cccc/dd/picture.jpg", folder); });
    addPath("splitPath", [&transfer] {
        return transfer.baseName(name) + transfer.filName(name) + transfer.validatePath(name.c_str());
    });
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    dbTrans transfer;
    SampleAccount account;
    addMessages(transfer, account);
    benchmark::RegisterBenchmark("decryptFile", decryptFile)->Arg(20 << 10)->Arg(4 << 20);
    addPaths(transfer);
    benchmark::RunSpecifiedBenchmarks();
}
