#include "app/package/package_files.h"

#include <algorithm>

#include "app/base/failure.h"
#include "app/base/file_version.h"
#include "host/base/fixed_text.h"
#include "host/files/folder_walk.h"
#include "host/files/whole_file.h"
#include "host/json/json_owner.h"
#include "host/tools.h"
#include "transfer/error_codes.h"
#include "transfer/format/json_fields.h"
#include "transfer/format/message_text.h"
#include "transfer/format/package_format.h"
#include "transfer/tables/recent_contact_table.h"

namespace app {
namespace {

using chattransfer::Omission;
using tools::JsonDocument;
using Take = std::function<void(PackageMessage)>;

std::string messagePath(const PackagePlace& place, int number) {
    return place.messages + tools::FixedText<50>(chattransfer::kMessageFileName, number).text();
}

std::shared_ptr<const DayLists> listsOf(chattransfer::MessageDay& day) {
    if (day.limitRange.empty() && day.relatedUsers.empty()) return nullptr;
    return std::make_shared<const DayLists>(DayLists{std::move(day.limitRange), std::move(day.relatedUsers)});
}

void takeDay(chattransfer::MessageDay& day, const Take& take) {
    const std::shared_ptr<const DayLists> lists = listsOf(day);
    for (imsdk::st_dbMessageBean& message : day.messages)
        take({std::move(message), lists});
}

void leaveOut(PackageFacts& facts, const std::string& path, Omission kind) {
    facts.unreadable.push_back(TransferReport::Skipped::of(path, kind));
}

void readMessageFile(const std::string& path, PackageFacts& facts, const Take& take) {
    std::string text;
    chattransfer::MessageFileContent file;
    if (tools::readWholeFile(path, text)) file = chattransfer::readMessageFileText(text, chattransfer::ReadKeys::all);
    if (!file.hasDays) {
        leaveOut(facts, path, Omission::messageFileMalformed);
        return;
    }
    ++facts.versions[file.version.value_or(kNoVersion)];
    for (chattransfer::MessageDay& day : file.days)
        takeDay(day, take);
}

void readContacts(const PackagePlace& place, PackageFacts& facts) {
    const std::string path = place.messages + chattransfer::kRecentContactFileName;
    if (tools::presenceOf(path) == tools::Presence::absent) return;
    const JsonDocument document(json_parse_file_no_link(path.c_str()));
    const JSON_Object* file = json_value_get_object(document.get());
    const JSON_Array* contacts = json_object_get_array(file, chattransfer::kRecentContactsKey);
    facts.hasContacts = contacts != nullptr;
    if (!facts.hasContacts) {
        leaveOut(facts, path, Omission::contactFileMalformed);
        return;
    }
    ++facts.versions[versionOf(file)];
    chattransfer::forEachObject(contacts, [&facts](const JSON_Object* object) {
        facts.contacts.push_back(chattransfer::readRecentContact(object));
    });
}

bool isMessageFileName(const std::string& name) {
    constexpr std::size_t kPrefix = 4;  // msg_
    constexpr std::size_t kSuffix = 3;  // .mg
    if (name.size() <= kPrefix + kSuffix || name.compare(0, kPrefix, "msg_") != 0) return false;
    if (name.compare(name.size() - kSuffix, kSuffix, ".mg") != 0) return false;
    return std::all_of(name.begin() + kPrefix, name.end() - kSuffix, [](char c) { return c >= '0' && c <= '9'; });
}

bool isPackageFile(Omission kind) {
    const chattransfer::OmittedThing thing = chattransfer::thingOf(kind);
    return thing == chattransfer::OmittedThing::messageFile || thing == chattransfer::OmittedThing::contactFile;
}

int countConsecutive(const PackagePlace& place) {
    int number = 0;
    while (tools::isFileExsit(messagePath(place, number)) != 0)
        ++number;
    return number;
}

}  // namespace

PackageFacts readPackage(const PackagePlace& place, const Take& take) {
    PackageFacts facts;
    facts.messageFiles = countConsecutive(place);
    facts.filesBehindGap = countFilesBehindGap(place);
    for (int number = 0; number < facts.messageFiles; ++number)
        readMessageFile(messagePath(place, number), facts, take);
    const std::string next = messagePath(place, facts.messageFiles);
    if (tools::presenceOf(next) == tools::Presence::unknown) leaveOut(facts, next, Omission::messageFileUncertain);
    readContacts(place, facts);
    return facts;
}

void requireVersion(const PackagePlace& place, const std::string& version) {
    const std::string path = messagePath(place, 0);
    const JsonDocument document(json_parse_file_no_link(path.c_str()));
    const JSON_Object* file = json_value_get_object(document.get());
    if (file == nullptr || chattransfer::hasVersion(file, version)) return;
    throw Failure({chattransfer::kWrongVersion, "The package has another version", path,
                   "this import expects \"" + version + "\", the package says \"" + versionOf(file) + "\"",
                   "if the package is what you want, give its version with --package-version"});
}

long long countFilesBehindGap(const PackagePlace& place) {
    const std::vector<std::string> names = tools::namesIn(place.messages).names;
    const long long files = std::count_if(names.begin(), names.end(), isMessageFileName);
    return std::max(0LL, files - countConsecutive(place));
}

long long countUnreadableFiles(const PackagePlace& place, const TransferReport& report) {
    // The report names only the first thousand things: beyond that the files are looked at once more.
    if (report.skippedCount > static_cast<long long>(TransferReport::kMostSkipped)) {
        return static_cast<long long>(readPackage(place, [](const PackageMessage&) {}).unreadable.size());
    }
    return std::count_if(report.skipped.begin(), report.skipped.end(),
                         [](const TransferReport::Skipped& skipped) { return isPackageFile(skipped.kind); });
}

}  // namespace app
