// bench-data: makes the accounts and trees that the benchmarks run on, always the same. What people write in them, and
// when, comes from the maker of samples. `bench-data --help` lists the arguments.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <utility>
#include <vector>

#include "app/places/new_file.h"
#include "app/sample/sample_conversation.h"
#include "app/sample/sample_plan.h"
#include "app/sample/sample_texts.h"
#include "app/sample/sample_tree.h"
#include "bench/names.h"
#include "host/CAES.h"
#include "transfer/dbTrans.h"
#include "transfer/format/account_folders.h"
#include "transfer/format/attachment_body.h"
#include "transfer/format/tree_format.h"

namespace fs = std::filesystem;

namespace bench {
namespace {

using Messages = std::vector<imsdk::st_dbMessageBean>;

struct Plan {
    std::string folder;
    app::SamplePlan sample;  // `messages` are those of each conversation
    long long attachmentEvery = 10;
    long long fileBytes = 0;  // of the real attachment files; 0 makes none
    long long first = 0;
    long long last = 1LL << 40;
    long long perFile = 1LL << 40;
    bool keyed = false;
};

// Attachments that are named and, unless the plan wants files, do not exist; a folder for each month of `day`. The
// floor of the import reads these bodies.
app::AttachmentMaker attachmentMaker(const Plan& plan) {
    return [&plan](int type, long long messageId, const std::string& day, app::Random& random) -> std::string {
        const std::string folder = day.substr(0, 4) + "/" + day.substr(5, 2);
        const std::string id = std::to_string(messageId);
        if (type == chattransfer::kImageMessage)
            return R"({"mediaUrl":")" + folder + "/p" + id + R"(.jpg","thumbUrl":")" + folder + "/t" + id + R"(.jpg"})";
        const std::string name = type == chattransfer::kVoiceMessage ? "v" + id + ".amr" : "f" + id + ".pdf";
        const std::string bytes(static_cast<std::size_t>(plan.fileBytes), static_cast<char>('a' + random.below(26)));
        if (!bytes.empty()) app::writeNewFile(plan.folder + chattransfer::kFileFolder + name, bytes);
        return R"({"fileName":")" + name + R"(","mediaUrl":")" + folder + R"(/media","size":20480})";
    };
}

// With real files, all attachments are of that type.
app::AttachmentTurns attachmentTurns(const Plan& plan) {
    const app::AttachmentKinds files = {{chattransfer::kFileMessage}, 1};
    return {plan.fileBytes > 0 ? files : app::packageAttachments(), plan.attachmentEvery};
}

// The texts of samples have 58 bytes on average. With these, and the bodies of attachments, bodies have 81.
void lengthenTexts(Messages& messages) {
    for (imsdk::st_dbMessageBean& message : messages) {
        app::Random random(static_cast<std::uint64_t>(message.msgID));
        const bool text = !chattransfer::carriesAttachments(message.msgType);
        if (text && random.below(5) < 2) message.body += " " + app::makeText(random);
    }
}

// Calls take(id, messages, contact) for each conversation of the plan.
template <class Take>
void forEachConversation(const Plan& plan, Take take) {
    app::SampleWriter writer(plan.sample, attachmentTurns(plan), attachmentMaker(plan));
    long long number = 0;
    for (const long long id : app::conversationIds(plan.sample)) {
        const app::SampleConversation conversation = writer.conversation(number++, id, kUserId);
        Messages messages = writer.messages(conversation, plan.sample.messages);
        messages.resize(static_cast<std::size_t>(std::min(plan.last, plan.sample.messages)));
        messages.erase(messages.begin(), messages.begin() + plan.first);
        lengthenTexts(messages);
        const imsdk::st_dbReContactBean contact = writer.contact(conversation, &messages.back());
        take(id, std::move(messages), contact);
    }
}

void makeAccount(const Plan& plan) {
    dbTrans transfer;
    transfer.rootPath = plan.folder;
    if (plan.keyed) transfer.dbKey = kKeyText;
    forEachConversation(plan, [&transfer](long long id, Messages messages, const auto& contact) {
        transfer.msgMap[id] = std::move(messages);
        transfer.reContacts.push_back(contact);
    });
    // The first write gives the second file its header, and with a key its encryption.
    const bool written = transfer.wtMsgToDB() == chattransfer::kSuccess && transfer.backdbOpen() != 0 &&
                         transfer.backDb.excuteNonQuery("PRAGMA user_version = 0") != 0;
    if (!written) throw std::runtime_error("cannot write into " + plan.folder);
}

void makeTree(const Plan& plan) {
    const std::string folder = chattransfer::treeRoot(plan.folder, kUser);
    fs::create_directories(folder + "imfiles");
    forEachConversation(plan, [&](long long id, const Messages& messages, const auto& /*contact*/) {
        static_cast<void>(app::writeMessageFiles(folder + std::to_string(id), kVersion, plan.perFile, messages));
    });
}

void encryptTree(const Plan& plan) {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(plan.folder))
        if (entry.path().extension() == chattransfer::kMessageExtension) files.push_back(entry.path());
    for (const fs::path& file : files) {
        const std::string plain = file.string() + ".plain";
        std::array<char, 256> error{};
        CAES cipher;
        fs::rename(file, plain);
        if (cipher.File_Aes_Go_Block(true, kKeyText, plain.c_str(), file.c_str(), error.data()) != 0)
            throw std::runtime_error(error.data());
        fs::remove(plain);
    }
}

// An account's messages; the same as a tree; what encrypts a tree's message files.
const std::map<std::string, void (*)(const Plan&)> kMakers = {
    {"account", makeAccount}, {"tree", makeTree}, {"encrypt", encryptTree}};

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
    CLI::App app("Makes accounts and trees for the benchmarks");
    std::string maker;
    bench::Plan plan;
    plan.sample = {0, 0, 365, 1};
    app.add_option("maker", maker, "What to make")->required()->check(CLI::IsMember(bench::kMakers));
    app.add_option("folder", plan.folder, "An empty account, or a tree's folder")->required();
    app.add_option("--conversations", plan.sample.conversations, "Number of conversations");
    app.add_option("--messages", plan.sample.messages, "Messages per conversation");
    app.add_option("--days", plan.sample.days, "Days over which they are spread");
    app.add_option("--attachment-every", plan.attachmentEvery, "One message of so many names attachments");
    app.add_option("--file-bytes", plan.fileBytes, "Make real attachment files of this size");
    app.add_option("--first", plan.first, "Leave out the messages before this number: a later part of the history");
    app.add_option("--last", plan.last, "Leave out those from this number on");
    app.add_option("--per-file", plan.perFile, "Messages in a file of a tree at most");
    app.add_flag("--keyed", plan.keyed, "Encrypt the databases");
    try {
        app.parse(argc, argv);
        bench::kMakers.at(maker)(plan);
        return 0;
    } catch (const CLI::ParseError& error) {
        return app.exit(error);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench-data: %s\n", error.what());
        return 1;
    }
}
