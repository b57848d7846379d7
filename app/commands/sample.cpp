#include <map>
#include <memory>

#include "app/account/key_source.h"
#include "app/account/missing_parts.h"
#include "app/account/open_database.h"
#include "app/base/failure.h"
#include "app/base/printable.h"
#include "app/base/progress_bar.h"
#include "app/commands/commands.h"
#include "app/sample/sample_attachment.h"
#include "app/sample/sample_conversation.h"
#include "app/sample/sample_plan.h"
#include "host/base/fixed_text.h"
#include "host/tools.h"
#include "transfer/base/progress.h"
#include "transfer/dbTrans.h"
#include "transfer/format/attachment_body.h"
#include "transfer/tables/conversation_writer.h"

namespace app {
namespace {

struct SampleOptions {
    std::string account;
    std::string user;
    SamplePlan plan;
    KeyOptions key;
};

void refuseExistingAccount(const Account& account) {
    for (const Database which : {Database::main, Database::back}) {
        if (!tools::fileExist(account.database(which).c_str())) continue;
        throw Failure({0, "There is an account already, and a sample never writes into one", account.database(which),
                       "", "choose another --account, or remove this one"});
    }
}

// Columns that clients fill and that the transfer does not write.
void fillClientColumns(imsdk::dbUtils& db, const std::string& table) {
    constexpr const char* kFill =
        "update %s set securityLevel = msgID / 1000 %% 50 = 0, unReadState = case when msgID / 1000 %% 30 = 0 then '1' "
        "else '' "
        "end";
    db.excuteNonQuery(tools::FixedText<256>(kFill, table.c_str()).text());
}

// Makes the account's conversations one after another, each in a transaction of its own.
class SampleJob {
public:
    SampleJob(const SampleOptions& options, const Account& account, dbTrans& transfer)
        : plan_(options.plan),
          account_(account),
          transfer_(transfer),
          writer_(plan_, AttachmentTurns(plan_.messages), makerFor(account)),
          ownId_(ownIdOf(options.user)) {}

    void run() {
        transfer_.getTables();
        chattransfer::TableIndex index(transfer_.tableNames);
        const std::vector<long long> ids = conversationIds(plan_);
        const std::vector<long long> sizes = conversationSizes(plan_);
        chattransfer::ProgressThrottle throttle;
        for (std::size_t i = 0; i < ids.size(); ++i) {
            writeConversation(writer_.conversation(static_cast<long long>(i), ids[i], ownId_), sizes[i], index);
            const bool last = i + 1 == ids.size();
            if (throttle.due(last)) transfer_.progress(1, static_cast<int>(ids.size()), static_cast<int>(i + 1));
        }
        if (transfer_.wtRecontactToDb() != chattransfer::kSuccess || transfer_.mainDb.transactionFailed()) fail();
    }

    [[nodiscard]] long long messagesOfType(int msgType) const {
        const auto found = messagesByType_.find(msgType);
        return found != messagesByType_.end() ? found->second : 0;
    }

private:
    static AttachmentMaker makerFor(const Account& account) {
        return [root = account.root()](int msgType, long long messageId, const std::string& day, Random& random) {
            return makeAttachment(root, msgType, messageId, day, random);
        };
    }

    static long long ownIdOf(const std::string& user) {
        constexpr long long kAnyId = 1000000000000001;
        const long long id = tools::atoint64(user.c_str());
        return id > 0 ? id : kAnyId;
    }

    void writeConversation(const SampleConversation& conversation, long long size, chattransfer::TableIndex& index) {
        const std::vector<imsdk::st_dbMessageBean> messages = writer_.messages(conversation, size);
        {
            const DbTranHelper transaction(&transfer_.mainDb);
            const std::string table =
                chattransfer::openMessageTable(transfer_.report, transfer_.mainDb, index, conversation.id);
            imsdk::dbCommand insert(&transfer_.mainDb, chattransfer::insertMessageStatement(table).c_str());
            for (const imsdk::st_dbMessageBean& message : messages) {
                // A new table refuses none for what it says; what the machine refuses ends the transaction.
                static_cast<void>(chattransfer::insertMessage(transfer_.report, transfer_.mainDb, insert, message));
                ++messagesByType_[message.msgType];
            }
            fillClientColumns(transfer_.mainDb, table);
        }
        if (transfer_.mainDb.transactionFailed()) fail();
        transfer_.reContacts.push_back(writer_.contact(conversation, messages.empty() ? nullptr : &messages.back()));
    }

    [[noreturn]] void fail() const {
        throw Failure({chattransfer::kDatabaseFailed, "The sample could not be written",
                       account_.database(Database::main), transfer_.mainDb.lastError(),
                       "check that the disk is not full, and remove what was begun"});
    }

    SamplePlan plan_;
    const Account& account_;
    dbTrans& transfer_;
    SampleWriter writer_;
    long long ownId_;
    std::map<int, long long> messagesByType_;
};

void summarise(Summary& summary, const dbTrans& transfer, const SampleOptions& options, const SampleJob& job) {
    summary.add("user", "User", printable(options.user));
    summary.add("messages.written", "Messages", transfer.report.messagesInserted);
    summary.add("conversations.all", "Conversations", options.plan.conversations);
    summary.add("days", "Days", options.plan.days);
    summary.add("recentContacts.written", "Recent contacts", transfer.report.contactsInserted);
    summary.add("messages.voice", "Voice messages", job.messagesOfType(chattransfer::kVoiceMessage));
    summary.add("messages.image", "Image messages", job.messagesOfType(chattransfer::kImageMessage));
    summary.add("messages.file", "File messages", job.messagesOfType(chattransfer::kFileMessage));
    summary.add("encrypted", "Encrypted", std::string(transfer.dbKey.empty() ? "no" : "yes"));
}

int runSample(const SampleOptions& options, RunReport& run) {
    const Account account(options.account);
    refuseExistingAccount(account);
    const SecretText key = findKey(options.key, account);
    dbTrans transfer;
    transfer.dbKey = key.text();
    static_cast<void>(makeMissingParts(account, key.text()));  // all of them
    openDatabase(transfer, account, Database::main);

    ProgressBar progress(run.phases);
    transfer.progressListener = &progress;
    progress.begin("Making the sample", {{1, "Writing conversations"}});
    SampleJob job(options, account, transfer);
    job.run();
    progress.complete();
    summarise(run.summary, transfer, options, job);
    run.printSummary("Made the sample account " + printable(account.root()));
    return kDone;
}

constexpr const char* kFooter =
    R"(The same options give the same messages and attachments, on every machine: samples are good for trying and for comparing.
The last day is always 2024-06-30. For a tree to import, see sample-tree.

Examples:
  chat-transfer sample --account ~/sample --user 1000000000000001
  chat-transfer sample --account ~/big --user 1000000000000001 --conversations 200 --messages 1000000 --key-file ~/.chat-key)";

}  // namespace

void addSampleCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<SampleOptions>();
    CLI::App* command = program.add_subcommand("sample", "Make an account that looks alive, to try things with");
    addAccountOption(*command, options->account);
    addUserOption(*command, options->user);
    SamplePlan& plan = options->plan;
    const auto addNumber = [command](const std::string& name, long long& number, long long most,
                                     const std::string& help) {
        command->add_option(name, number, help)
            ->type_name("N")
            ->check(CLI::Range(1LL, most).description(""))
            ->capture_default_str();
    };
    addNumber("--conversations", plan.conversations, 1000000, "How many conversations");
    addNumber("--messages", plan.messages, 100000000, "How many messages in all of them");
    addNumber("--days", plan.days, 18250, "How many days they span");
    command->add_option("--seed", plan.seed, "Another number makes another account")
        ->type_name("N")
        ->capture_default_str();
    addKeyOptions(*command, options->key);
    command->footer(kFooter);
    setJob(*command, job, std::move(options), runSample);
}

}  // namespace app
